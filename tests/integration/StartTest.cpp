#include <arpa/inet.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/Descriptors.h"
#include "support/DaemonTest.h"
#include "support/SocketTable.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

TEST(Start, ShowsTheBanner) {
    const Daemon daemon;
    EXPECT_TRUE(isBannerOnly(daemon.error())) << daemon.error();
    EXPECT_EQ(daemon.output(), "");
    expectHealthy(daemon);
}

TEST(Start, ShowsTheBuildThatAnswers) {
    const Daemon daemon;
    const std::string banner = daemon.error();
    const std::string stamp = banner.substr(std::strlen("Production Test Server (Build "), 19);
    Connection station;
    expectExchange(station, request("status"), "\x02#status \"" + stamp + "\" A024 \"1A\" 4\x03\n");
    expectHealthy(daemon);
}

/// A daemon with this argument that prints something and ends.
std::string printedFor(const char* argument) {
    DaemonStart start;
    start.arguments = {argument};
    start.waitForPort = false;
    Daemon daemon(start);
    EXPECT_EQ(daemon.waitForEnd(), 0);
    EXPECT_EQ(daemon.error(), "");
    return daemon.output();
}

TEST(Start, TellsItsUseInsteadWhenAsked) {
    for (const char* argument : {"--help", "-h"}) {
        SCOPED_TRACE(argument);
        EXPECT_EQ(printedFor(argument),
                  "production, no startup parameter\n"
                  "\n"
                  "A daemon for executing production tests.\n"
                  "It must be started while the head unit is in its factory test mode.\n");
    }
}

TEST(Start, TellsItsVersionInsteadWhenAsked) {
    const std::string stamp = Daemon().buildStamp();
    for (const char* argument : {"--version", "-V"}) {
        SCOPED_TRACE(argument);
        EXPECT_EQ(printedFor(argument), "production, build " + stamp + ", protocol version 4\n");
    }
}

TEST(Start, AnyOtherArgumentIsIgnored) {
    for (const char* argument : {"", "-x", "--verbose", "help", "-", "--"}) {
        SCOPED_TRACE(argument);
        DaemonStart start;
        start.arguments = {argument, "--help"};
        const Daemon daemon(start);
        EXPECT_TRUE(isBannerOnly(daemon.error())) << daemon.error();
        EXPECT_EQ(daemon.output(), "");
        expectHealthy(daemon);
    }
}

struct Closed {
    const char* name;
    std::vector<int> streams;
};

const Closed kClosed[] = {
    {"input", {0}},
    {"output", {1}},
    {"error", {2}},
    {"input, output", {0, 1}},
    {"output, error", {1, 2}},
    {"all", {0, 1, 2}},
};

TEST(Start, WorksWithoutStandardStreams) {
    for (const Closed& row : kClosed) {
        SCOPED_TRACE(row.name);
        DaemonStart start;
        start.closed = row.streams;
        const Daemon daemon(start);
        const std::vector<int> open = openDescriptors(daemon.pid());
        ASSERT_EQ(open.size(), kOwnDescriptors);
        EXPECT_THAT(std::vector<int>(open.begin(), open.begin() + 3), testing::ElementsAre(0, 1, 2));
        Connection station;
        // Its noise goes to standard output, whatever that is; never to a connection.
        expectExchange(station, "\x02status 02 ...\x03\n",
                       answer("status base64(" + base64(contentOf(kSerialNumberFile)) + ")"));
        expectExchange(station, request("exec command 5 \"echo out; echo err >&2; ls /proc/self/fd\""),
                       answer("exec base64(" + base64("out\nerr\n0\n1\n2\n3\n") + ")"));
        expectNothingMore(station);
        EXPECT_TRUE(daemon.isAlive());
    }
}

TEST(Start, AReaderOfStandardOutputMayLeave) {
    System::Descriptor reading;
    System::Descriptor writing;
    ASSERT_TRUE(System::openPipe(reading, writing));
    DaemonStart start;
    start.standardOutput = writing.get();
    const Daemon daemon(start);
    writing.reset();
    reading.reset();
    Connection station;
    for (int round = 0; round < 100; ++round)
        expectExchange(station, "\x02one ---...\x03\n", unknown("one"));
    expectExchange(station, request("exec command 5 \"echo still here\""),
                   answer("exec base64(" + base64("still here\n") + ")"));
    expectNothingMore(station);
    expectHealthy(daemon);
}

TEST(Start, AFullDiskBehindStandardOutputIsNoMatter) {
    const System::Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(full);
    DaemonStart start;
    start.standardOutput = full.get();
    const Daemon daemon(start);
    Connection station;
    for (int round = 0; round < 100; ++round)
        expectExchange(station, "\x02one ---...\x03\n", unknown("one"));
    expectNothingMore(station);
    expectHealthy(daemon);
}

System::Descriptor takePort() {
    System::Descriptor socket = System::openTcpSocket();
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(Connection::kPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket.get(), 1) != 0)
        throw std::runtime_error(std::string("cannot take the port: ") + std::strerror(errno));
    return socket;
}

TEST(Start, WaitsForAPortThatIsTaken) {
    System::Descriptor other = takePort();
    DaemonStart start;
    start.waitForPort = false;
    const Daemon daemon(start);
    ASSERT_TRUE(daemon.waitForError(kStartEnd));
    const auto before = processorTime(daemon.pid());
    observeFor(std::chrono::seconds(1));
    EXPECT_LT(processorTime(daemon.pid()) - before, std::chrono::milliseconds(200));
    EXPECT_TRUE(daemon.isAlive());

    other.reset();
    ASSERT_TRUE(eventually(isListening));
    expectHealthy(daemon);
}

TEST(Start, TakesThePortOfADaemonThatWasKilled) {
    std::vector<Connection> stations;
    {
        const Daemon first;
        stations.resize(3);
        for (Connection& station : stations)
            expectExchange(station, request("first"), unknown("first"));
    }
    const Daemon second;
    for (Connection& station : stations)
        EXPECT_EQ(station.receiveUntilClosed(), "");
    expectHealthy(second);
}

TEST(Start, TwoDaemonsTakeTurns) {
    DaemonStart start;
    start.waitForPort = false;
    auto first = std::make_unique<Daemon>();
    const Daemon second(start);
    expectHealthy(*first);
    ASSERT_TRUE(second.waitForError(kStartEnd));
    EXPECT_TRUE(second.isAlive());
    first.reset();
    ASSERT_TRUE(eventually(isListening));
    expectHealthy(second);
}

} // namespace
