#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/DaemonTest.h"
#include "support/SocketTable.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

class StationsTest : public DaemonTest {};

TEST_F(StationsTest, GetOnlyTheirOwnAnswers) {
    std::vector<Connection> stations = acceptedStations(20);
    for (int round = 0; round < 10; ++round) {
        const std::string suffix = "r" + std::to_string(round);
        for (std::size_t number = 0; number < stations.size(); ++number)
            stations[number].send(request("s" + std::to_string(number) + suffix));
        for (std::size_t number = stations.size(); number-- > 0;)
            expectExchange(stations[number], "", unknown("s" + std::to_string(number) + suffix));
    }
    for (Connection& station : stations)
        expectNothingMore(station);
}

TEST_F(StationsTest, AnUnfinishedLineHoldsUpNobody) {
    Connection slow;
    slow.send("\x02slo");
    slow.waitUntilTaken();
    Connection quick;
    expectExchange(quick, request("quick"), unknown("quick"));
    expectExchange(slow, "w\x03\n", unknown("slow"));
}

TEST_F(StationsTest, ReachTheDaemonOnLoopbackOnly) {
    for (const char* address : {"127.0.0.2", "127.1.2.3", "127.255.255.254"}) {
        SCOPED_TRACE(address);
        EXPECT_THROW(Connection{address}, std::runtime_error);
    }
    std::vector<std::string> addresses;
    for (const char* table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        for (const TcpSocket& socket : tcpSockets(table)) {
            if (socket.state == TcpSocket::kListening)
                addresses.push_back(socket.localAddress);
        }
    }
    EXPECT_THAT(addresses, testing::ElementsAre("0100007F"));
}

TEST_F(StationsTest, LeaveNothingBehind) {
    const auto descriptors = openDescriptors(daemon.pid());
    const std::size_t threads = settledThreadCount(daemon.pid());
    {
        const std::vector<Connection> stations = acceptedStations(50);
        EXPECT_EQ(openDescriptors(daemon.pid()).size(), descriptors.size() + stations.size());
        EXPECT_EQ(threadCount(daemon.pid()), threads + stations.size());
    }
    EXPECT_TRUE(eventually([&] { return openDescriptors(daemon.pid()) == descriptors; }));
    EXPECT_TRUE(eventually([&] { return threadCount(daemon.pid()) == threads; }));
}

TEST_F(StationsTest, WaitWhileAnotherStationsCommandRuns) {
    writeFile(kSerialNumberFile, "before");
    std::vector<Connection> waiting = acceptedStations(5);
    Connection busy;
    busy.send(
        request("exec command 60 \"touch /tmp/running; while [ ! -e /tmp/go ]; do sleep 0.01; done; "
                "printf after >/dev/nvsku/serial_num\""));
    ASSERT_TRUE(eventually([] { return exists("/tmp/running"); }));
    for (Connection& station : waiting) {
        station.send(request("status 02"));
        station.waitUntilTaken();
    }
    writeFile("/tmp/go", "");
    // The running command changes what they read as its last act.
    for (Connection& station : waiting)
        expectExchange(station, "", answer("status base64(" + base64("after") + ")"));
    expectExchange(busy, "", answer("exec base64()"));
}

} // namespace
