// Files and nodes that are opened by path.
#include "platform/Node.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "NodeResults.h"
#include "platform/BlockDevice.h"
#include "support/ErrorNumber.h"
#include "support/Rows.h"

using ::testing::ElementsAre;
using ::testing::StartsWith;

namespace {

constexpr char kAnyLimit[] = "TimerTimeout 0 0x50 null ";

class QnxNodeTest : public QnxTest {
protected:
    char m_byte = 'z';
};

} // namespace

TEST_F(QnxNodeTest, ANodeIsOpenedWithoutWaiting) {
    const Rows<int, const char*> rows = {{O_RDONLY, "open64 \"/dev/node\" 0x80"},
                                         {O_WRONLY, "open64 \"/dev/node\" 0x81"},
                                         {O_RDWR, "open64 \"/dev/node\" 0x82"}};
    for (const auto& [access, call] : rows) {
        FakeSystem::next("open64", {7});
        nextKind(S_IFCHR);
        EXPECT_EQ(System::openNode("/dev/node", access).release(), 7);
        const auto calls = FakeSystem::calls();
        ASSERT_GE(calls.size(), 2u);
        EXPECT_EQ(calls[0], call);
        EXPECT_EQ(calls[1], "fcntl 7 2 0x1");
        FakeSystem::reset();
    }
}

TEST_F(QnxNodeTest, ANodeThatIsMissingIsEmptyAndSaysWhy) {
    FakeSystem::fail("open64", ENOENT);
    EXPECT_EQ(errorOf(System::openNode("/dev/node", O_RDONLY)), ENOENT);
}

TEST_F(QnxNodeTest, AFileIsReadAndWrittenAsItIs) {
    nextKind(S_IFREG);
    FakeSystem::next("read", {1, 0, {'1'}});
    EXPECT_EQ(System::readNode(7, &m_byte, 1), 1);
    EXPECT_EQ(m_byte, '1');
    EXPECT_CALLS(kLimit, "fstat 7", "read 7 1");
    nextKind(S_IFREG);
    EXPECT_EQ(System::writeNode(7, "0", 1), 1);
    EXPECT_CALLS(kLimit, "fstat 7", "write 7 \"0\"");
}

TEST_F(QnxNodeTest, AManagersAnswerIsLimited) {
    nextKind(S_IFCHR);
    FakeSystem::next("read", {1, 0, {'1'}});
    EXPECT_EQ(System::readNode(7, &m_byte, 1), 1);
    EXPECT_EQ(m_byte, '1');
    EXPECT_CALLS(kLimit, "fstat 7", kLimit, "read 7 1");
    nextKind(S_IFCHR);
    EXPECT_EQ(System::writeNode(7, "1", 1), 1);
    EXPECT_CALLS(kLimit, "fstat 7", kLimit, "write 7 \"1\"");
}

TEST_F(QnxNodeTest, AManagerThatDoesNotAnswerIsReported) {
    nextKind(S_IFCHR);
    FakeSystem::fail("read", ETIMEDOUT);
    EXPECT_EQ(errorOf(System::readNode(7, &m_byte, 1)), ETIMEDOUT);
}

TEST_F(QnxNodeTest, AManagerThatHasNothingYetIsToldToWait) {
    nextKind(S_IFCHR);
    FakeSystem::fail("read", EAGAIN);
    FakeSystem::next("read", {1, 0, {'1'}});
    EXPECT_EQ(System::readNode(7, &m_byte, 1), 1);
    const auto calls = FakeSystem::calls();
    // Telling is a message as well; each one has what is left of the time.
    EXPECT_THAT(calls, ElementsAre(kLimit, "fstat 7", kLimit, "read 7 1", StartsWith(kAnyLimit),
                                   "fcntl 7 4 0x0", StartsWith(kAnyLimit), "read 7 1"));
    EXPECT_NE(calls[4], kLimit);
    EXPECT_NE(calls[6], kLimit);
}

TEST_F(QnxNodeTest, AManagerThatCannotBeToldToWaitIsReported) {
    nextKind(S_IFCHR);
    FakeSystem::fail("read", EAGAIN);
    FakeSystem::fail("fcntl", ETIMEDOUT);
    EXPECT_EQ(errorOf(System::readNode(7, &m_byte, 1)), ETIMEDOUT);
    EXPECT_EQ(FakeSystem::calls().back(), "fcntl 7 4 0x0");
}

TEST_F(QnxNodeTest, AWaitThatCannotBeLimitedIsNotBegun) {
    nextKind(S_IFCHR);
    FakeSystem::next("TimerTimeout", {0});
    FakeSystem::fail("TimerTimeout", EINVAL);
    EXPECT_EQ(errorOf(System::readNode(7, &m_byte, 1)), EINVAL);
    EXPECT_CALLS(kLimit, "fstat 7", kLimit);
}

TEST_F(QnxNodeTest, APipesWriterIsWaitedFor) {
    FakeSystem::next("open64", {7});
    nextKind(S_IFIFO);
    EXPECT_EQ(System::openNode("/dev/node", O_RDONLY).release(), 7);
    EXPECT_CALLS("open64 \"/dev/node\" 0x80", "fcntl 7 2 0x1", kLimit, "fstat 7",
                 StartsWith("poll 7:0x1 "));
}

TEST_F(QnxNodeTest, APipeThatNobodyWritesToIsClosedAgain) {
    FakeSystem::next("open64", {7});
    nextKind(S_IFIFO);
    FakeSystem::next("poll", {0});
    EXPECT_EQ(errorOf(System::openNode("/dev/node", O_RDONLY)), ETIMEDOUT);
    EXPECT_EQ(FakeSystem::calls().back(), "close 7");
}

TEST_F(QnxNodeTest, WhatManagersReadInOneStepIs) {
    nextKind(S_IFCHR);
    FakeSystem::next("pread", {1, 0, {'1'}});
    EXPECT_EQ(System::readNodeAt(7, &m_byte, 1, 5), 1);
    EXPECT_EQ(m_byte, '1');
    EXPECT_CALLS(kLimit, "fstat 7", kLimit, "pread 7 1 5");
}

TEST_F(QnxNodeTest, WhatManagersDoNotIsSoughtAndRead) {
    for (const int error : {ENOSYS, ESPIPE}) {
        nextKind(S_IFCHR);
        FakeSystem::fail("pread", error);
        nextKind(S_IFCHR);
        FakeSystem::next("read", {1, 0, {'1'}});
        EXPECT_EQ(System::readNodeAt(7, &m_byte, 1, 5), 1);
        EXPECT_EQ(m_byte, '1');
        EXPECT_CALLS(kLimit, "fstat 7", kLimit, "pread 7 1 5", kLimit, "lseek 7 5 0", kLimit, "fstat 7",
                     kLimit, "read 7 1");
    }
}

TEST_F(QnxNodeTest, WhatHasNoPositionsIsReadOn) {
    nextKind(S_IFIFO);
    FakeSystem::fail("pread", ESPIPE);
    FakeSystem::fail("lseek", ESPIPE);
    nextKind(S_IFIFO);
    FakeSystem::next("read", {1, 0, {'1'}});
    EXPECT_EQ(System::readNodeAt(7, &m_byte, 1, 5), 1);
}

TEST_F(QnxNodeTest, APositionThatIsRefusedIsReported) {
    nextKind(S_IFCHR);
    FakeSystem::fail("pread", ENOSYS);
    FakeSystem::fail("lseek", EINVAL);
    EXPECT_EQ(errorOf(System::readNodeAt(7, &m_byte, 1, 5)), EINVAL);
}

TEST_F(QnxNodeTest, ADriveIsGivenTheTimeToGetHoldOfItsMedium) {
    FakeSystem::next("open64", {7});
    nextKind(S_IFBLK);
    nextKind(S_IFBLK);
    FakeSystem::next("open64", {8});
    EXPECT_EQ(System::openBlockDevice("/dev/cd0", O_RDONLY).release(), 8);
    EXPECT_CALLS("open64 \"/dev/cd0\" 0x80", "fcntl 7 2 0x1", kLimit, "fstat 7", kLimit, "fstat 7",
                 "open64 \"/dev/cd0\" 0x0", "fcntl 8 2 0x1", "close 7");
}

TEST_F(QnxNodeTest, WhatIsNoDriveIsOpenedOnce) {
    FakeSystem::next("open64", {7});
    nextKind(S_IFREG);
    EXPECT_EQ(System::openBlockDevice("/dev/fs0", O_RDWR).release(), 7);
    EXPECT_CALLS("open64 \"/dev/fs0\" 0x82", "fcntl 7 2 0x1", kLimit, "fstat 7");
}

TEST_F(QnxNodeTest, TheStatusIsLimited) {
    nextKind(S_IFCHR);
    struct stat status {};
    EXPECT_TRUE(System::nodeStatus(7, status));
    EXPECT_TRUE(S_ISCHR(status.st_mode));
    EXPECT_CALLS(kLimit, "fstat 7");
    FakeSystem::fail("fstat", ETIMEDOUT);
    EXPECT_EQ(errorOf(System::nodeStatus(7, status)), ETIMEDOUT);
    FakeSystem::calls();
    FakeSystem::fail("TimerTimeout", EINVAL);
    EXPECT_EQ(errorOf(System::nodeStatus(7, status)), EINVAL);
    EXPECT_CALLS(kLimit);
}

TEST_F(QnxNodeTest, TheSizeIsWhereTheContentEnds) {
    nextKind(S_IFREG);
    FakeSystem::next("lseek", {5});
    EXPECT_EQ(System::nodeSize(7), 5);
    EXPECT_CALLS(kLimit, "fstat 7", "lseek 7 0 2");
    nextKind(S_IFCHR);
    FakeSystem::next("lseek", {6});
    EXPECT_EQ(System::nodeSize(7), 6);
    EXPECT_CALLS(kLimit, "fstat 7", kLimit, "lseek 7 0 2");
}

TEST_F(QnxNodeTest, ASizeThatCannotBeToldIsReported) {
    const Rows<mode_t, int, off_t> rows = {
        {S_IFIFO, ESPIPE, 0}, {S_IFCHR, ETIMEDOUT, -1}, {S_IFREG, EINVAL, -1}};
    for (const auto& [kind, error, size] : rows) {
        SCOPED_TRACE(kind);
        nextKind(kind);
        FakeSystem::fail("lseek", error);
        EXPECT_EQ(System::nodeSize(7), size);
        EXPECT_EQ(errno, error);
    }
    nextKind(S_IFDIR);
    EXPECT_EQ(errorOf(System::nodeSize(7)), EISDIR);
    FakeSystem::fail("fstat", ETIMEDOUT);
    EXPECT_EQ(errorOf(System::nodeSize(7)), ETIMEDOUT);
}
