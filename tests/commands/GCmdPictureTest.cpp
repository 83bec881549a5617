// Which pictures are unpacked, and what may lie where they go.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/ErrorOutput.h"
#include "support/GraphicsUnit.h"

namespace fs = std::filesystem;

namespace {

constexpr char kNotFound[] = "path to test image not found";

class GCmdPictureTest : public GraphicsUnit {
protected:
    /// That a picture can be shown from its usual place.
    static void expectPicture(int index, const std::string& content) {
        std::string path;
        expectSuccess(graphics().unzipTestScreen(index, path));
        EXPECT_EQ(path, unpackedPath(static_cast<unsigned>(index)));
        struct stat information {};
        ASSERT_EQ(::lstat(path.c_str(), &information), 0);
        EXPECT_TRUE(S_ISREG(information.st_mode));
        EXPECT_TRUE(read(path) == content);
    }

    static void expectRefused(const std::string& text) {
        std::string path = "as it was";
        expectError(graphics().unzipTestScreen(0, path), kGenericError, text);
        EXPECT_EQ(path, "as it was");
    }

    static std::string errorOutputOfRefusal(const std::string& text) {
        graphics();
        return errorOutputOf([&text] { expectRefused(text); });
    }
};

} // namespace

TEST_F(GCmdPictureTest, EachPictureIsUnpacked) {
    for (int index = 0; index < GCmd::kScreens; ++index)
        expectPicture(index, pictureContent(static_cast<unsigned>(index)));
}

TEST_F(GCmdPictureTest, AnUnpackedPictureIsReused) {
    write(unpackedPath(0), std::string(kPictureBytes, 'r'));
    expectPicture(0, std::string(kPictureBytes, 'r'));
    remove(packedPath(0));
    expectPicture(0, std::string(kPictureBytes, 'r'));
}

TEST_F(GCmdPictureTest, WhatHasAnotherSizeIsReplaced) {
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, kPictureBytes - 1, kPictureBytes + 1}) {
        SCOPED_TRACE(size);
        write(unpackedPath(0), std::string(size, 'o'));
        expectPicture(0, pictureContent(0));
        remove(unpackedPath(0));
    }
}

TEST_F(GCmdPictureTest, WhatWasPutInPlaceOfAPictureIsReplacedAndNotTouched) {
    write("/tmp/precious", "precious");
    ASSERT_EQ(::link("/tmp/precious", unpackedPath(0).c_str()), 0);
    expectPicture(0, pictureContent(0));
    EXPECT_EQ(read("/tmp/precious"), "precious");
    remove(unpackedPath(0));
    ASSERT_EQ(::mkfifo(unpackedPath(0).c_str(), 0600), 0);
    expectPicture(0, pictureContent(0));
}

TEST_F(GCmdPictureTest, ALinkInPlaceOfAPictureIsReplacedAndNotWhatItLeadsTo) {
    write("/tmp/precious", "precious");
    graphics();
    for (const char* target : {"/tmp/precious", "/tmp/none", "/tmp", "/dev/null"}) {
        SCOPED_TRACE(target);
        ASSERT_EQ(::symlink(target, unpackedPath(0).c_str()), 0);
        EXPECT_EQ(errorOutputOf([] { expectPicture(0, pictureContent(0)); }), "");
        remove(unpackedPath(0));
    }
    EXPECT_EQ(read("/tmp/precious"), "precious");
    EXPECT_FALSE(exists("/tmp/none"));
}

TEST_F(GCmdPictureTest, ALinkToAFileOfTheRightSizeIsReused) {
    const std::string like(kPictureBytes, 'l');
    write("/tmp/like-a-picture", like);
    ASSERT_EQ(::symlink("/tmp/like-a-picture", unpackedPath(0).c_str()), 0);
    std::string path;
    expectSuccess(graphics().unzipTestScreen(0, path));
    EXPECT_EQ(path, unpackedPath(0));
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_TRUE(read(path) == like);
}

TEST_F(GCmdPictureTest, AnEmptyFolderInPlaceOfAPictureIsReplaced) {
    fs::create_directory(unpackedPath(0));
    expectPicture(0, pictureContent(0));
}

TEST_F(GCmdPictureTest, WhatCannotBeRemovedIsReported) {
    const std::string notRemoved =
        "Prod.testserver: Could not remove the unzipped image file, dest path: " + unpackedPath(0) +
        "\n";
    fs::create_directory(unpackedPath(0));
    write(unpackedPath(0) + "/precious", "precious");
    EXPECT_EQ(errorOutputOfRefusal("unzipping bitmap failed: cannot open " + unpackedPath(0) +
                                   " for writing: Is a directory\n"),
              notRemoved);
    remove(packedPath(0));
    EXPECT_EQ(errorOutputOfRefusal(kNotFound), notRemoved);
    EXPECT_EQ(read(unpackedPath(0) + "/precious"), "precious");
    fs::remove_all(unpackedPath(0));
    EXPECT_EQ(errorOutputOfRefusal(kNotFound), "");
}

TEST_F(GCmdPictureTest, WhatIsNoFileIsNoStoredPicture) {
    remove(packedPath(0));
    expectRefused(kNotFound);
    fs::create_directory(packedPath(0));
    expectRefused(kNotFound);
    remove(packedPath(0));
    ASSERT_EQ(::mkfifo(packedPath(0).c_str(), 0600), 0);
    expectRefused(kNotFound);
    EXPECT_FALSE(exists(unpackedPath(0)));
}

TEST_F(GCmdPictureTest, AnOldPictureGoesBeforeTheNewOneIsLookedFor) {
    write(unpackedPath(0), "old");
    remove(packedPath(0));
    expectRefused(kNotFound);
    EXPECT_FALSE(exists(unpackedPath(0)));
}

TEST_F(GCmdPictureTest, APictureThatCannotBeUnpackedLeavesNothing) {
    const std::string source = packedPath(0);
    write(source, brokenPacking());
    expectRefused("unzipping bitmap failed: gzread on " + source + " error " + source +
                  ": invalid block type occurred\n");
    EXPECT_FALSE(exists(unpackedPath(0)));
    pack(source, pictureContent(0));
    expectPicture(0, pictureContent(0));
}

TEST_F(GCmdPictureTest, APictureWithTooFewBytesIsShownAllTheSame) {
    const std::string begun = pictureContent(0).substr(0, 1000);
    pack(packedPath(0), begun);
    const auto expectShown = [&begun] {
        expectPicture(0, begun + std::string(kPictureBytes - begun.size(), '\0'));
    };
    graphics();
    EXPECT_EQ(errorOutputOf(expectShown), "Prod.testserver: " + packedPath(0) +
                                              " unpacks to 1000 bytes instead of 1152054, the rest is "
                                              "zero\n");
    EXPECT_EQ(errorOutputOf(expectShown), "") << "what has been unpacked is reused";
}

TEST_F(GCmdPictureTest, UnpackingByItselfTellsSuccessFromFailure) {
    EXPECT_EQ(graphics().unzipFile(packedPath(1).c_str(), "/tmp/copy.bmp"), 0);
    EXPECT_TRUE(read("/tmp/copy.bmp") == pictureContent(1));
    remove("/tmp/copy.bmp");
    EXPECT_NE(graphics().unzipFile("/tmp/none.gz", "/tmp/copy.bmp"), 0);
    EXPECT_FALSE(exists("/tmp/copy.bmp"));
}
