#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "line/BinaryLink.h"
#include "requests/Answers.h"
#include "requests/RequestSource.h"
#include "support/DaemonTest.h"
#include "support/Waiting.h"

namespace {

constexpr char kSeedVariable[] = "RANDOM_REQUESTS_SEED";
constexpr std::uint64_t kUsualSeed = 20240229;

// 200,000 together; a tenth of them where everything takes ten times as long.
constexpr int kScale = kSanitized ? 10 : 1;
constexpr int kSerialRequests = 80'000 / kScale;
constexpr int kTcpRequests = 40'000 / kScale;

constexpr Medium::Place kSerialMedium = {180, 0, "/dev/mnand0", true};
constexpr Medium::Place kTcpMedia[] = {
    {178, 0, "/dev/cd0", false}, {179, 0, "/dev/umass/umass0", true}, {180, 1, "/dev/fs0", true}};

// By then the stations' windows are in memory. A sanitizer sets freed memory aside for long.
constexpr int kWarmUp = 20'000 / kScale;
constexpr std::size_t kKibi = 1024;
constexpr std::size_t kMebi = 1024 * kKibi;
constexpr std::size_t kMostGrowth = (kSanitized ? 384 : 1) * kMebi;

constexpr std::chrono::milliseconds kSilence{200};

std::uint64_t chosenSeed() {
    const char* text = std::getenv(kSeedVariable);
    return text == nullptr ? kUsualSeed : std::strtoull(text, nullptr, 0);
}

/// The real daemon, the audio driver beside it, and one station on the serial line.
class RandomRequestsTest : public testing::Test {
protected:
    using Send = std::function<void(const Exchange&)>;

    void SetUp() override {
        std::cout << kSeedVariable << "=" << seed << std::endl;
        // Comes back once the driver is ready.
        ASSERT_EQ(std::system("deva-nvaudio"), 0);
        ASSERT_EQ(adapter.receiveFrame(), statusFrame(daemon.buildStamp(), false));
        adapter.send(kAcknowledgement);
        adapter.waitUntilTaken();
    }

    /// One station's requests on a thread of its own; the first wrong answer ends it.
    std::thread station(int number, const Medium::Place& medium, int requests, Send send) {
        return std::thread([this, number, &medium, requests, send = std::move(send)] {
            int request = 0;
            std::string sent;
            try {
                RequestSource source(seed + static_cast<std::uint64_t>(number), number, medium,
                                     daemon.buildStamp());
                for (; request <= requests && !HasFailure(); ++request) {
                    const Exchange exchange = request < requests ? source.next() : source.last();
                    sent = exchange.line + " | " + testing::PrintToString(exchange.frame);
                    send(exchange);
                    ++answered;
                }
            } catch (const std::exception& exception) {
                ADD_FAILURE() << kSeedVariable << "=" << seed << ", station " << number << ", request "
                              << request << ": " << sent << "\n"
                              << exception.what();
            }
        });
    }

    const std::uint64_t seed = chosenSeed();
    std::atomic<int> answered{0};
    Adapter adapter;
    Daemon daemon{withStationLine()};
};

TEST_F(RandomRequestsTest, GetTheirOwnAnswersOverBothLinksAtOnce) {
    std::vector<Connection> connections(std::size(kTcpMedia));
    std::vector<std::thread> threads;
    threads.push_back(station(0, kSerialMedium, kSerialRequests,
                              [this](const Exchange& exchange) { exchangeFrame(adapter, exchange); }));
    for (std::size_t at = 0; at < connections.size(); ++at)
        threads.push_back(station(static_cast<int>(at) + 1, kTcpMedia[at], kTcpRequests,
                                  [&connection = connections[at]](const Exchange& exchange) {
                                      exchangeLine(connection, exchange);
                                  }));

    EXPECT_TRUE(eventually([this] { return answered >= kWarmUp || HasFailure(); }));
    const std::size_t before = residentBytes(daemon.pid());
    for (std::thread& thread : threads)
        thread.join();
    const std::size_t after = residentBytes(daemon.pid());

    ASSERT_TRUE(daemon.isAlive()) << daemon.error();
    ASSERT_FALSE(HasFailure());
    EXPECT_LE(after, before + kMostGrowth);
    std::cout << "resident KiB " << before / kKibi << " -> " << after / kKibi << std::endl;
    for (Connection& connection : connections)
        expectNothingMore(connection);
    EXPECT_TRUE(adapter.isSilentFor(kSilence));
    // An acknowledgement may come late on a busy machine, but none is anything else.
    EXPECT_EQ(daemon.error().find("Received"), std::string::npos) << daemon.error();
}

} // namespace
