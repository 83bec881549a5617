#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"

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

TEST_F(ExecCaptureTest, ACommandMayReplaceTheFile) {
    expectExchange(station,
                   request("exec command 5 \"echo captured; rm /tmp/resp.txt; ln -s /tmp/target "
                           "/tmp/resp.txt; echo more\""),
                   answer("exec base64(" + base64("captured\nmore\n") + ")"));
    EXPECT_FALSE(exists("/tmp/target"));
}

} // namespace
