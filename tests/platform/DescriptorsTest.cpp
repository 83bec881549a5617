#include "platform/Descriptors.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "support/DescriptorLimit.h"
#include "support/ErrorNumber.h"

using System::Descriptor;

namespace {

bool closesOnExec(const Descriptor& descriptor) {
    return (::fcntl(descriptor.get(), F_GETFD) & FD_CLOEXEC) != 0;
}

int socketOption(const Descriptor& socket, int option) {
    int value = -1;
    socklen_t size = sizeof value;
    ::getsockopt(socket.get(), SOL_SOCKET, option, &value, &size);
    return value;
}

bool isNullDevice(int descriptor) {
    struct stat expected {};
    struct stat actual {};
    return ::stat("/dev/null", &expected) == 0 && ::fstat(descriptor, &actual) == 0 &&
           actual.st_rdev == expected.st_rdev;
}

} // namespace

TEST(DescriptorsTest, ASocketIsForTcpAndCannotBeInherited) {
    const Descriptor socket = System::openTcpSocket();
    ASSERT_TRUE(socket);
    EXPECT_TRUE(closesOnExec(socket));
    EXPECT_EQ(socketOption(socket, SO_DOMAIN), AF_INET);
    EXPECT_EQ(socketOption(socket, SO_TYPE), SOCK_STREAM);
    EXPECT_EQ(socketOption(socket, SO_PROTOCOL), IPPROTO_TCP);
}

TEST(DescriptorsTest, AnAcceptedConnectionCannotBeInherited) {
    const Descriptor listening = System::openTcpSocket();
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    ASSERT_EQ(::bind(listening.get(), generic, size), 0);
    ASSERT_EQ(::listen(listening.get(), 1), 0);
    ASSERT_EQ(::getsockname(listening.get(), generic, &size), 0);
    const Descriptor client = System::openTcpSocket();
    ASSERT_EQ(::connect(client.get(), generic, size), 0);

    const Descriptor connection = System::acceptConnection(listening.get());
    ASSERT_TRUE(connection);
    EXPECT_TRUE(closesOnExec(connection));
    ASSERT_EQ(::write(client.get(), "hi", 2), 2);
    char received[2] = {};
    EXPECT_EQ(::read(connection.get(), received, 2), 2);
    EXPECT_EQ(received[0], 'h');
}

TEST(DescriptorsTest, AcceptingFromWhatDoesNotListenFails) {
    const Descriptor socket = System::openTcpSocket();
    EXPECT_EQ(errorOf(System::acceptConnection(socket.get())), EINVAL);
}

TEST(DescriptorsTest, APipeCannotBeInherited) {
    Descriptor readEnd;
    Descriptor writeEnd;
    ASSERT_TRUE(System::openPipe(readEnd, writeEnd));
    EXPECT_TRUE(closesOnExec(readEnd));
    EXPECT_TRUE(closesOnExec(writeEnd));
    ASSERT_EQ(::write(writeEnd.get(), "x", 1), 1);
    char received = 0;
    EXPECT_EQ(::read(readEnd.get(), &received, 1), 1);
    EXPECT_EQ(received, 'x');
}

TEST(DescriptorsTest, APipeThatCannotBeMadeLeavesBothEndsAsTheyWere) {
    Descriptor readEnd(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    Descriptor writeEnd;
    const int before = readEnd.get();
    const NoMoreDescriptors none;
    EXPECT_EQ(errorOf(System::openPipe(readEnd, writeEnd)), EMFILE);
    EXPECT_EQ(readEnd.get(), before);
    EXPECT_FALSE(writeEnd);
}

TEST(DescriptorsTest, ASocketThatCannotBeMadeIsEmpty) {
    const NoMoreDescriptors none;
    EXPECT_EQ(errorOf(System::openTcpSocket()), EMFILE);
}

TEST(DescriptorsTest, StandardStreamsThatWereClosedBecomeTheNullDevice) {
    const auto withoutAny = [] {
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::close(stream);
        System::openStandardStreams();
        const bool good =
            isNullDevice(STDIN_FILENO) && isNullDevice(STDOUT_FILENO) && isNullDevice(STDERR_FILENO);
        std::_Exit(good ? 0 : 1);
    };
    EXPECT_EXIT(withoutAny(), ::testing::ExitedWithCode(0), "");
}

TEST(DescriptorsTest, StandardStreamsThatAreOpenStayAsTheyAre) {
    const auto withoutOutput = [] {
        int ends[2];
        if (::pipe(ends) != 0 || ::dup2(ends[0], STDIN_FILENO) != STDIN_FILENO)
            std::_Exit(2);
        ::close(STDOUT_FILENO);
        System::openStandardStreams();
        std::_Exit(!isNullDevice(STDIN_FILENO) && isNullDevice(STDOUT_FILENO) ? 0 : 1);
    };
    EXPECT_EXIT(withoutOutput(), ::testing::ExitedWithCode(0), "");
}

TEST(DescriptorsTest, OpeningStandardStreamsLeavesNothingElseOpen) {
    const Descriptor before(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    System::openStandardStreams();
    const Descriptor after(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(after.get(), before.get() + 1);
}
