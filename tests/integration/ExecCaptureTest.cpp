#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

namespace fs = std::filesystem;

class ExecCaptureTest : public DaemonTest {
protected:
    void expectOutputInANewFile() {
        expectExchange(station, request("exec command 5 \"echo captured\""),
                       answer("exec base64(" + base64("captured\n") + ")"));
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(kCaptureFile)));
        EXPECT_EQ(contentOf(kCaptureFile), "captured\n");
        EXPECT_EQ(fs::hard_link_count(kCaptureFile), 1U);
    }

    void expectCannotBeCreated() {
        expectExchange(station, request("exec command 5 \"echo captured; touch /tmp/ran\""),
                       failure("exec", "Error, the /tmp/resp.txt could not be created"));
        EXPECT_FALSE(exists("/tmp/ran"));
    }

    Connection station;
};

TEST_F(ExecCaptureTest, MakesTheFile) {
    ASSERT_FALSE(exists(kCaptureFile));
    expectOutputInANewFile();
}

TEST_F(ExecCaptureTest, KeepsTheFileToItsUser) {
    const mode_t before = ::umask(0);
    expectOutputInANewFile();
    ::umask(before);
    EXPECT_EQ(fs::status(kCaptureFile).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(ExecCaptureTest, ReplacesALongerFile) {
    writeFile(kCaptureFile, std::string(100000, 'x'));
    expectOutputInANewFile();
}

TEST_F(ExecCaptureTest, DoesNotFollowALink) {
    writeFile("/tmp/target", "untouched");
    makeLink(kCaptureFile, "/tmp/target");
    expectOutputInANewFile();
    EXPECT_EQ(contentOf("/tmp/target"), "untouched");
}

TEST_F(ExecCaptureTest, DoesNotMakeTheTargetOfALink) {
    makeLink(kCaptureFile, "/tmp/target");
    expectOutputInANewFile();
    EXPECT_FALSE(exists("/tmp/target"));
}

TEST_F(ExecCaptureTest, DoesNotWriteThroughAHardLink) {
    writeFile("/tmp/target", "untouched");
    fs::create_hard_link("/tmp/target", kCaptureFile);
    expectOutputInANewFile();
    EXPECT_EQ(contentOf("/tmp/target"), "untouched");
}

TEST_F(ExecCaptureTest, DoesNotWaitForThePeerOfAFifo) {
    makeFifo(kCaptureFile);
    expectOutputInANewFile();
}

TEST_F(ExecCaptureTest, RefusesWhenAFolderIsInTheWay) {
    makeFolder(kCaptureFile);
    expectCannotBeCreated();
    removeFile(kCaptureFile);
    expectOutputInANewFile();
}

struct Replacement {
    const char* name;
    const char* text;  ///< puts something else in the file's place
    std::string reply; ///< the unit's lines
};

const Replacement kReplacements[] = {
    {"another file", "echo lost; rm /tmp/resp.txt; echo new >/tmp/resp.txt; echo lost",
     answer("exec base64(" + base64("new\n") + ")")},
    {"a file that is moved over it", "echo new >/tmp/new; mv /tmp/new /tmp/resp.txt; echo lost",
     answer("exec base64(" + base64("new\n") + ")")},
    {"a link", "echo new >/tmp/new; ln -sf /tmp/new /tmp/resp.txt; echo lost",
     answer("exec base64(" + base64("new\n") + ")")},
    {"nothing", "echo lost; rm /tmp/resp.txt; echo lost",
     failure("exec", "cannot open /tmp/resp.txt, no information available")},
    {"a link to nothing", "ln -sf /tmp/none /tmp/resp.txt; echo lost",
     failure("exec", "cannot open /tmp/resp.txt, no information available")},
    {"a folder", "rm /tmp/resp.txt; mkdir /tmp/resp.txt",
     failure("exec", "cannot read /tmp/resp.txt: Is a directory")},
    {"a file larger than any memory", "truncate -s 8T /tmp/resp.txt",
     failure("exec", "cannot read /tmp/resp.txt: Cannot allocate memory")},
    {"an endless device", "ln -sf /dev/zero /tmp/resp.txt", answer("exec base64()")},
};

TEST_F(ExecCaptureTest, AnswersWhatACommandPutsInPlaceOfTheFile) {
    for (const Replacement& row : kReplacements) {
        SCOPED_TRACE(row.name);
        expectExchange(station, request(std::string("exec command 60 \"") + row.text + "\""), row.reply);
        if (exists(kCaptureFile))
            removeFile(kCaptureFile);
    }
    EXPECT_FALSE(exists("/tmp/none"));
    expectOutputInANewFile();
}

TEST_F(ExecCaptureTest, DoesNotWaitForThePeerOfAFifoThatACommandPutsThere) {
    station.send(request("exec command 60 \"rm /tmp/resp.txt; mkfifo /tmp/resp.txt\""));
    ASSERT_TRUE(station.hasInputWithin(kPatience));
    EXPECT_THAT(station.receiveLine(), testing::StartsWith("\x02#Info \"cannot "));
    EXPECT_EQ(station.receiveLine(), answer("exec Error 0x1010000"));
    removeFile(kCaptureFile);
    expectOutputInANewFile();
}

} // namespace
