// Sockets and pipes, which become close-on-exec in a second step.
#include "platform/Descriptors.h"

#include <cerrno>

#include "QnxTest.h"
#include "support/ErrorNumber.h"

using System::Descriptor;

namespace {

class QnxDescriptorsTest : public QnxTest {};

} // namespace

TEST_F(QnxDescriptorsTest, ATcpSocketIsKeptFromOtherPrograms) {
    FakeSystem::next("socket", {7});
    Descriptor socket = System::openTcpSocket();
    EXPECT_EQ(socket.release(), 7);
    EXPECT_CALLS("socket 2 1 0", "fcntl 7 2 0x1");
}

TEST_F(QnxDescriptorsTest, ASocketThatIsRefusedIsEmptyAndSaysWhy) {
    FakeSystem::fail("socket", EMFILE);
    EXPECT_EQ(errorOf(System::openTcpSocket()), EMFILE);
    EXPECT_CALLS("socket 2 1 0");
}

TEST_F(QnxDescriptorsTest, ASocketThatOtherProgramsCouldInheritIsClosedAgain) {
    FakeSystem::next("socket", {7});
    FakeSystem::fail("fcntl", EINVAL);
    EXPECT_EQ(errorOf(System::openTcpSocket()), EINVAL);
    EXPECT_CALLS("socket 2 1 0", "fcntl 7 2 0x1", "close 7");
}

TEST_F(QnxDescriptorsTest, AConnectionIsAcceptedWhateverItsAddress) {
    FakeSystem::next("accept", {8});
    Descriptor connection = System::acceptConnection(7);
    EXPECT_EQ(connection.release(), 8);
    EXPECT_CALLS("accept 7 null null", "fcntl 8 2 0x1");
}

TEST_F(QnxDescriptorsTest, AConnectionThatIsGoneIsEmptyAndSaysWhy) {
    FakeSystem::fail("accept", ECONNABORTED);
    EXPECT_EQ(errorOf(System::acceptConnection(7)), ECONNABORTED);
}

TEST_F(QnxDescriptorsTest, BothEndsOfAPipeAreKeptFromOtherPrograms) {
    Descriptor readEnd;
    Descriptor writeEnd;
    EXPECT_TRUE(System::openPipe(readEnd, writeEnd));
    EXPECT_EQ(readEnd.release(), 21);
    EXPECT_EQ(writeEnd.release(), 22);
    EXPECT_CALLS("pipe", "fcntl 21 2 0x1", "fcntl 22 2 0x1");
}

TEST_F(QnxDescriptorsTest, APipeThatIsRefusedLeavesTheEndsAsTheyWere) {
    Descriptor readEnd(5);
    Descriptor writeEnd(6);
    FakeSystem::fail("pipe", ENFILE);
    EXPECT_EQ(errorOf(System::openPipe(readEnd, writeEnd)), ENFILE);
    EXPECT_EQ(readEnd.release(), 5);
    EXPECT_EQ(writeEnd.release(), 6);
}

TEST_F(QnxDescriptorsTest, APipeThatIsOnlyHalfSafeIsClosedAgain) {
    Descriptor readEnd;
    Descriptor writeEnd;
    FakeSystem::next("fcntl", {});
    FakeSystem::fail("fcntl", EINVAL);
    EXPECT_EQ(errorOf(System::openPipe(readEnd, writeEnd)), EINVAL);
    EXPECT_FALSE(readEnd);
    EXPECT_FALSE(writeEnd);
    EXPECT_CALLS("pipe", "fcntl 21 2 0x1", "fcntl 22 2 0x1", "close 22", "close 21");
}
