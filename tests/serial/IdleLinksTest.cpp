#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "AsciiDaemonTest.h"
#include "support/Waiting.h"

namespace {

constexpr std::chrono::seconds kObservation{1};
constexpr long kFewWakeUps = 3;
constexpr int kAttempts = 3;
constexpr std::size_t kStations = 5;
constexpr char kAcknowledgement[] = "\x02\x06";

/// A daemon whose station has been announced to and heard, and then says nothing.
class IdleLinksTest : public testing::TestWithParam<bool> {
protected:
    IdleLinksTest() { hear(); }

    static bool speaksAscii() { return GetParam(); }

    static DaemonStart start() {
        DaemonStart start = asciiStart();
        if (!speaksAscii())
            start.supplier = std::nullopt;
        return start;
    }

    void hear() {
        if (speaksAscii()) {
            expectExchange(adapter, "", banner(daemon));
            expectNothingMore(adapter);
            return;
        }
        EXPECT_EQ(adapter.receiveFrame().size(), 24U);
        adapter.send(kAcknowledgement);
        adapter.send("\x02s");
        EXPECT_EQ(adapter.receiveFrame().size(), 24U);
        adapter.send(kAcknowledgement);
        adapter.waitUntilTaken();
    }

    /// It comes to rest, whatever it still had to finish. A sanitizer has a thread of its own in the
    /// process, which wakes up all the time.
    void expectSleep() {
        if (kSanitized)
            GTEST_SKIP() << "the sanitizer's own thread wakes up";
        ASSERT_GT(wakeUps(daemon.pid()), 0);
        long during = 0;
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            const long before = wakeUps(daemon.pid());
            observeFor(kObservation);
            during = wakeUps(daemon.pid()) - before;
            if (during <= kFewWakeUps)
                return;
        }
        ADD_FAILURE() << during << " wake-ups";
    }

    Adapter adapter;
    Daemon daemon{start()};
};

TEST_P(IdleLinksTest, SleepWithBothUp) {
    const std::vector<Connection> stations = acceptedStations(kStations);
    expectSleep();
}

TEST_P(IdleLinksTest, SleepWithTheLinePulled) {
    const std::vector<Connection> stations = acceptedStations(kStations);
    adapter.pull();
    expectSleep();
}

TEST_P(IdleLinksTest, SleepAfterTheLineCameBack) {
    const std::vector<Connection> stations = acceptedStations(kStations);
    adapter.pull();
    adapter.plug();
    if (speaksAscii()) {
        hear();
    } else {
        // Announced with two remarks that this has happened
        // before; only the frame itself is acknowledged.
        EXPECT_EQ(adapter.receiveFrame().substr(1, 1), "d");
        EXPECT_EQ(adapter.receiveFrame().substr(1, 1), "d");
        hear();
    }
    expectSleep();
}

TEST_P(IdleLinksTest, SleepInTheMiddleOfALine) {
    if (!speaksAscii())
        GTEST_SKIP() << "a frame is not waited for";
    adapter.send("\x02unfinished");
    adapter.waitUntilTaken();
    expectSleep();
}

INSTANTIATE_TEST_SUITE_P(Protocols, IdleLinksTest, testing::Bool(),
                         [](const auto& information) { return information.param ? "Ascii" : "Binary"; });

} // namespace
