#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "support/DaemonTest.h"
#include "support/Waiting.h"

namespace {

constexpr std::chrono::seconds kObservation{1};
constexpr std::chrono::milliseconds kMoment{50};
constexpr long kFewWakeUps = 3;

class IdleTest : public DaemonTest {
protected:
    /// A sanitizer has a thread of its own in the process, which wakes up all the time.
    void expectSleep() {
        if (kSanitized)
            GTEST_SKIP() << "the sanitizer's own thread wakes up";
        // What it did before may still be at its end.
        long before = 0;
        ASSERT_TRUE(eventually([&] {
            before = wakeUps(daemon.pid());
            observeFor(kMoment);
            return wakeUps(daemon.pid()) == before;
        }));
        ASSERT_GT(before, 0);
        observeFor(kObservation);
        EXPECT_LE(wakeUps(daemon.pid()) - before, kFewWakeUps);
    }
};

TEST_F(IdleTest, SleepsWithoutConnections) {
    expectSleep();
}

TEST_F(IdleTest, SleepsWithIdleConnections) {
    const std::vector<Connection> stations = acceptedStations(20);
    expectSleep();
}

TEST_F(IdleTest, SleepsWithAnUnfinishedLine) {
    Connection station;
    station.send("\x02unfinished");
    station.waitUntilTaken();
    expectSleep();
}

TEST_F(IdleTest, SleepsWhileACommandRuns) {
    Connection station;
    station.send(request("exec command 60 \"sleep 2; echo done\""));
    station.waitUntilTaken();
    EXPECT_TRUE(eventually([this] { return !childrenOf(daemon.pid()).empty(); }));
    expectSleep();
    expectExchange(station, "", answer("exec base64(" + base64("done\n") + ")"));
}

} // namespace
