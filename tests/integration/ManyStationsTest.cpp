#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "support/DaemonTest.h"
#include "support/Parallel.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

constexpr std::size_t kStations = 64;
constexpr std::size_t kRequestsEach = 1000;
constexpr std::size_t kManyConnections = 1000;

class ManyStationsTest : public DaemonTest {};

TEST_F(ManyStationsTest, EachGetsItsOwnAnswers) {
    writeFile(kSerialNumberFile, "0123");
    const std::string status = answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4");
    runInThreads(kStations, [&status](std::size_t number) {
        Connection station;
        for (std::size_t round = 0; round < kRequestsEach && !testing::Test::HasFailure(); ++round) {
            const std::string name = "s" + std::to_string(number) + "r" + std::to_string(round);
            switch ((number + round) % 5) {
                case 0:
                    expectExchange(station, request("status"), status);
                    break;
                case 1:
                    expectExchange(station, request("status 02"), answer("status base64(MDEyMw==)"));
                    break;
                case 2:
                    expectExchange(station, request("ack " + name), answer(""));
                    break;
                default:
                    expectExchange(station, request(name + " \"" + name + "\""), unknown(name));
            }
        }
        expectNothingMore(station);
    });
}

TEST_F(ManyStationsTest, AThousandAreServedSideBySide) {
    allowConnections(kManyConnections);
    daemon.limit(RLIMIT_NOFILE, RLIM_INFINITY);
    std::vector<Connection> stations;
    stations.reserve(kManyConnections);
    for (std::size_t number = 0; number < kManyConnections; ++number) {
        stations.emplace_back();
        const std::string name = "s" + std::to_string(number);
        expectExchange(stations.back(), request(name), unknown(name));
    }
    EXPECT_EQ(openDescriptors(daemon.pid()).size(), kManyConnections + kOwnDescriptors);
    for (Connection& station : stations)
        expectNothingMore(station);
}

// Faster than anybody accepts. Who is turned away by a full queue tries again after a second, and after
// twice as long each time.
TEST_F(ManyStationsTest, ThatOpenManyConnectionsEachAreAllServed) {
    constexpr std::size_t kClients = 20;
    constexpr std::size_t kConnectionsEach = 50;
    allowConnections(kClients * kConnectionsEach);
    daemon.limit(RLIMIT_NOFILE, RLIM_INFINITY);
    const std::string status = answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4");
    runInThreads(kClients, [&status](std::size_t) {
        std::vector<Connection> connections(kConnectionsEach);
        for (Connection& connection : connections)
            connection.send(request("status"));
        for (Connection& connection : connections)
            expectExchange(connection, "", status);
        for (Connection& connection : connections)
            expectExchange(connection, request("status"), status);
    });
}

/// Opens connections until one is answered: the system may drop those that come in a rush.
void askUntilAnswered(const std::string& name) {
    const auto deadline = std::chrono::steady_clock::now() + 2 * kPatience;
    while (std::chrono::steady_clock::now() < deadline) {
        Connection station;
        if (!station.trySend(request(name)) || !station.hasInputWithin(std::chrono::seconds(2)))
            continue;
        expectExchange(station, "", unknown(name));
        expectExchange(station, request(name), unknown(name));
        return;
    }
    ADD_FAILURE() << name << " was not served";
}

TEST(MoreStationsThanDescriptors, AreAllServedInTheEnd) {
    if (kAddressSanitized)
        GTEST_SKIP() << "a sanitizer needs descriptors for its own checks";
    allowConnections(kManyConnections);
    DaemonStart start;
    start.limits = {{RLIMIT_NOFILE, 256}};
    const Daemon daemon(start);
    runInThreads(kManyConnections,
                 [](std::size_t number) { askUntilAnswered("s" + std::to_string(number)); });
    EXPECT_TRUE(eventually([&] { return openDescriptors(daemon.pid()).size() == kOwnDescriptors; }));
    expectHealthy(daemon);
}

TEST_F(ManyStationsTest, ComeAndGo) {
    runInThreads(16, [](std::size_t number) {
        for (int round = 0; round < 200; ++round) {
            Connection station;
            const std::string name = "s" + std::to_string(number) + "r" + std::to_string(round);
            expectExchange(station, request(name), unknown(name));
        }
    });
    EXPECT_TRUE(eventually([this] { return openDescriptors(daemon.pid()).size() == kOwnDescriptors; }));
}

TEST_F(ManyStationsTest, ShareTheShell) {
    runInThreads(8, [](std::size_t number) {
        Connection station;
        for (int round = 0; round < 25; ++round) {
            const std::string text = "s" + std::to_string(number) + "r" + std::to_string(round);
            expectExchange(station, request("exec command 60 \"echo " + text + "\""),
                           answer("exec base64(" + base64(text + "\n") + ")"));
        }
        expectNothingMore(station);
    });
}

} // namespace
