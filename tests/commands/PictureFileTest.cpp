// Unpacking a picture: its content, what lies in its way, and what the system refuses. It is long as
// each of these leaves nothing behind in a way of its own.
#include "commands/PictureFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "support/ErrorOutput.h"
#include "support/Files.h"
#include "support/PackedPicture.h"
#include "support/RefusedResources.h"
#include "support/TestFolder.h"
#include "wire/Descriptor.h"

namespace fs = std::filesystem;

namespace {

/// The number that the next descriptor will get.
int nextDescriptor() {
    return System::Descriptor(::dup(STDERR_FILENO)).get();
}

/// Files may not grow beyond so many bytes, which is how a full disk looks to whoever writes one.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit now = m_before;
        now.rlim_cur = bytes;
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &now), 0);
    }
    ~FullDisk() { EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &m_before), 0); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_before{};
};

class PictureFileTest : public ::testing::Test {
protected:
    std::string in(const std::string& name) const { return m_folder / name; }
    std::string packed() const { return in("picture.bmp.gz"); }
    std::string unpacked() const { return in("picture.bmp"); }
    std::string unpack() const { return PictureFile::unpack(packed().c_str(), unpacked().c_str()); }

    /// That the packed file cannot be unpacked, and that nothing of it is left.
    void expectRefused(const std::string& text) const {
        EXPECT_EQ(unpack(), text);
        EXPECT_FALSE(exists(unpacked()));
        EXPECT_FALSE(PictureFile::isUnpacked(unpacked().c_str()));
    }

private:
    const TestFolder m_folder;
};

} // namespace

TEST_F(PictureFileTest, UnpacksAPicture) {
    pack(packed(), pictureContent(1));
    EXPECT_EQ(unpack(), "");
    EXPECT_TRUE(contentOf(unpacked()) == pictureContent(1));
    EXPECT_TRUE(PictureFile::isUnpacked(unpacked().c_str()));
    EXPECT_EQ(PictureFile::kBytes, static_cast<int>(kPictureBytes));
}

TEST_F(PictureFileTest, AnUnpackedPictureCanBeReadByAll) {
    pack(packed(), pictureContent(1));
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    EXPECT_EQ(unpack(), "");
    ::umask(before);
    struct stat information {};
    ASSERT_EQ(::stat(unpacked().c_str(), &information), 0);
    EXPECT_EQ(information.st_mode & ~static_cast<mode_t>(S_IFMT),
              static_cast<mode_t>(S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH));
}

TEST_F(PictureFileTest, WhatIsBehindAPictureIsLeftOut) {
    for (const std::size_t size : {kPictureBytes, kPictureBytes + 1, 2 * kPictureBytes}) {
        SCOPED_TRACE(size);
        const std::string content = pictureContent(2, size);
        pack(packed(), content);
        EXPECT_EQ(unpack(), "");
        EXPECT_TRUE(contentOf(unpacked()) == content.substr(0, kPictureBytes));
    }
}

TEST_F(PictureFileTest, WhatALackOfBytesLeavesOpenIsZero) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{54}, kPictureBytes - 1}) {
        SCOPED_TRACE(size);
        const std::string begun = pictureContent(2, size);
        pack(packed(), begun);
        EXPECT_EQ(errorOutputOf([this] { EXPECT_EQ(unpack(), ""); }),
                  "Prod.testserver: " + packed() + " unpacks to " + std::to_string(size) +
                      " bytes instead of 1152054, the rest is zero\n");
        EXPECT_TRUE(contentOf(unpacked()) == begun + std::string(kPictureBytes - size, '\0'));
        EXPECT_TRUE(PictureFile::isUnpacked(unpacked().c_str()));
    }
}

TEST_F(PictureFileTest, APackedFileThatIsCutOffIsTakenAsFarAsItGoes) {
    pack(packed(), pictureContent(1));
    const std::string bytes = contentOf(packed());
    writeFile(packed(), bytes.substr(0, bytes.size() / 2));
    EXPECT_THAT(errorOutputOf([this] { EXPECT_EQ(unpack(), ""); }),
                ::testing::HasSubstr(" bytes instead of "));
    const std::string content = contentOf(unpacked());
    ASSERT_EQ(content.size(), kPictureBytes);
    constexpr std::size_t kSurelyThere = kPictureBytes / 4;
    EXPECT_TRUE(content.substr(0, kSurelyThere) == pictureContent(1).substr(0, kSurelyThere));
    EXPECT_EQ(content.back(), '\0');
}

TEST_F(PictureFileTest, AFileThatIsNotPackedIsTakenAsItIs) {
    writeFile(packed(), pictureContent(3));
    EXPECT_EQ(unpack(), "");
    EXPECT_TRUE(contentOf(unpacked()) == pictureContent(3));
}

TEST_F(PictureFileTest, AFileInTheWayIsReplaced) {
    pack(packed(), pictureContent(1));
    for (const std::size_t size : {std::size_t{0}, std::size_t{10}, kPictureBytes + 4096}) {
        SCOPED_TRACE(size);
        writeFile(unpacked(), std::string(size, 'o'));
        EXPECT_EQ(unpack(), "");
        EXPECT_TRUE(contentOf(unpacked()) == pictureContent(1));
    }
}

TEST_F(PictureFileTest, ASourceThatIsNotThereLeavesEverythingAsItWas) {
    const std::string text = "cannot open " + packed() + " for gzread()ing: No such file or directory\n";
    expectRefused(text);
    writeFile(unpacked(), "old");
    EXPECT_EQ(unpack(), text);
    EXPECT_EQ(contentOf(unpacked()), "old");
}

TEST_F(PictureFileTest, ASourceThatCannotBeReadLeavesNoPicture) {
    const std::string nothingRead = "read on " + packed() + " error " + std::strerror(0) + " occurred\n";
    writeFile(packed(), "");
    expectRefused(nothingRead);
    pack(packed(), "");
    expectRefused(nothingRead);
    writeFile(packed(), brokenPacking().substr(0, 10));
    expectRefused(nothingRead);
    writeFile(packed(), brokenPacking());
    expectRefused("gzread on " + packed() + " error " + packed() + ": invalid block type occurred\n");
    writeFile(unpacked(), pictureContent(1));
    expectRefused("gzread on " + packed() + " error " + packed() + ": invalid block type occurred\n");
    fs::remove(packed());
    fs::create_directory(packed());
    expectRefused("gzread on " + packed() + " error " + packed() + ": Is a directory occurred\n");
}

TEST_F(PictureFileTest, APictureWhoseMiddleIsBrokenIsNotKept) {
    pack(packed(), pictureContent(1));
    std::string bytes = contentOf(packed());
    ASSERT_GT(bytes.size(), kPictureBytes / 2);
    std::fill(bytes.begin() + kPictureBytes / 4, bytes.end(), '\xFF');
    writeFile(packed(), bytes);
    EXPECT_THAT(unpack(), ::testing::StartsWith("gzread on " + packed() + " error " + packed() + ": "));
    EXPECT_FALSE(exists(unpacked()));
}

TEST_F(PictureFileTest, OnlyARegularFileIsWrittenTo) {
    pack(packed(), pictureContent(1));
    const auto expectUntouched = [this](const std::string& reason) {
        SCOPED_TRACE(reason);
        EXPECT_EQ(unpack(), "cannot open " + unpacked() + " for writing: " + reason + "\n");
        EXPECT_TRUE(exists(unpacked()));
        EXPECT_FALSE(PictureFile::isUnpacked(unpacked().c_str()));
        fs::remove_all(unpacked());
    };
    writeFile(in("precious"), "precious");
    fs::create_symlink(in("precious"), unpacked());
    expectUntouched("Too many levels of symbolic links");
    EXPECT_EQ(contentOf(in("precious")), "precious");
    fs::create_symlink(in("none"), unpacked());
    expectUntouched("Too many levels of symbolic links");
    EXPECT_FALSE(exists(in("none")));
    fs::create_directory(unpacked());
    expectUntouched("Is a directory");
    ASSERT_EQ(::mkfifo(unpacked().c_str(), S_IRUSR | S_IWUSR), 0);
    expectUntouched("No such device or address");
    ASSERT_EQ(::mkfifo(unpacked().c_str(), S_IRUSR | S_IWUSR), 0);
    const System::Descriptor reader(::open(unpacked().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    expectUntouched("Invalid argument");
    char byte = 0;
    EXPECT_EQ(::read(reader.get(), &byte, 1), 0) << "nothing has been written into the pipe";
}

TEST_F(PictureFileTest, ADeviceIsNotWrittenToAndStays) {
    pack(packed(), pictureContent(1));
    EXPECT_EQ(PictureFile::unpack(packed().c_str(), "/dev/null"),
              "cannot open /dev/null for writing: Invalid argument\n");
    EXPECT_TRUE(exists("/dev/null"));
}

TEST_F(PictureFileTest, AFolderThatIsNotThereIsNotMade) {
    pack(packed(), pictureContent(1));
    const std::string destination = in("none/picture.bmp");
    EXPECT_EQ(PictureFile::unpack(packed().c_str(), destination.c_str()),
              "cannot open " + destination + " for writing: No such file or directory\n");
    EXPECT_FALSE(exists(in("none")));
}

TEST_F(PictureFileTest, AFullDiskLeavesNoPicture) {
    pack(packed(), pictureContent(1));
    for (const std::size_t room : {std::size_t{0}, std::size_t{4096}, kPictureBytes - 1}) {
        SCOPED_TRACE(room);
        const FullDisk disk(room);
        expectRefused("cannot write " + unpacked() + ": File too large\n");
    }
    const FullDisk large(kPictureBytes);
    EXPECT_EQ(unpack(), "");
    EXPECT_TRUE(contentOf(unpacked()) == pictureContent(1));
}

TEST_F(PictureFileTest, TooLittleMemoryLeavesNoPicture) {
    pack(packed(), pictureContent(1));
    refusePictureMemory(true);
    expectRefused("cannot alloc 1152054 bytes");
    refusePictureMemory(false);
    EXPECT_EQ(unpack(), "");
}

TEST_F(PictureFileTest, NothingIsLeftOpen) {
    const int before = nextDescriptor();
    unpack();
    pack(packed(), pictureContent(1));
    unpack();
    fs::remove(unpacked());
    refusePictureMemory(true);
    unpack();
    refusePictureMemory(false);
    fs::create_directory(unpacked());
    unpack();
    fs::remove(unpacked());
    writeFile(packed(), brokenPacking());
    unpack();
    writeFile(packed(), "");
    unpack();
    EXPECT_EQ(nextDescriptor(), before);
}

TEST_F(PictureFileTest, OnlyAFileCanBePacked) {
    const auto isPacked = [this] { return PictureFile::isPacked(packed().c_str()); };
    EXPECT_FALSE(isPacked());
    fs::create_directory(packed());
    EXPECT_FALSE(isPacked());
    fs::remove(packed());
    ASSERT_EQ(::mkfifo(packed().c_str(), S_IRUSR | S_IWUSR), 0);
    EXPECT_FALSE(isPacked());
    fs::remove(packed());
    writeFile(in("stored"), "");
    fs::create_symlink(in("stored"), packed());
    EXPECT_TRUE(isPacked());
    fs::remove(packed());
    writeFile(packed(), "");
    EXPECT_TRUE(isPacked());
}

TEST_F(PictureFileTest, OnlyAFileOfTheRightSizeIsAnUnpackedPicture) {
    const auto isUnpacked = [this] { return PictureFile::isUnpacked(unpacked().c_str()); };
    EXPECT_FALSE(isUnpacked());
    for (const std::size_t size : {std::size_t{0}, kPictureBytes - 1, kPictureBytes + 1}) {
        writeFile(unpacked(), std::string(size, 'p'));
        EXPECT_FALSE(isUnpacked()) << size;
    }
    writeFile(unpacked(), std::string(kPictureBytes, 'p'));
    EXPECT_TRUE(isUnpacked());
    fs::rename(unpacked(), in("elsewhere"));
    EXPECT_FALSE(isUnpacked());
    fs::create_symlink(in("elsewhere"), unpacked());
    EXPECT_TRUE(isUnpacked()) << "a link leads to a file of that size";
    fs::resize_file(in("elsewhere"), kPictureBytes - 1);
    EXPECT_FALSE(isUnpacked());
    fs::remove(unpacked());
    fs::create_directory(unpacked());
    EXPECT_FALSE(isUnpacked());
}

TEST_F(PictureFileTest, WhateverIsInTheWayGoesAndNothingElse) {
    const auto clear = [this] { return PictureFile::clear(unpacked().c_str()); };
    EXPECT_TRUE(clear()) << "nothing is in the way";
    writeFile(unpacked(), "old");
    EXPECT_TRUE(clear());
    EXPECT_FALSE(exists(unpacked()));
    writeFile(in("precious"), "precious");
    for (const char* target : {"precious", "none"}) {
        fs::create_symlink(in(target), unpacked());
        EXPECT_TRUE(clear());
        EXPECT_FALSE(exists(unpacked()));
    }
    EXPECT_EQ(contentOf(in("precious")), "precious");
    fs::create_directory(unpacked());
    EXPECT_TRUE(clear());
    fs::create_directory(unpacked());
    writeFile(unpacked() + "/precious", "precious");
    EXPECT_FALSE(clear());
    EXPECT_EQ(contentOf(unpacked() + "/precious"), "precious");
}
