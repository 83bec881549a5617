#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <cerrno>
#include <chrono>
#include <string>

#include "AsciiDaemonTest.h"
#include "support/Waiting.h"

namespace {

constexpr std::chrono::seconds kObservation{1};
constexpr std::chrono::milliseconds kLittleTime{200};
// With pauses that double up to a second each.
constexpr std::size_t kFewGreetings = 15;

/// A daemon that the kernel never has the memory to let poll.
class NoPollTest : public testing::TestWithParam<bool> {
protected:
    static DaemonStart start() {
        DaemonStart start = asciiStart();
        if (!GetParam())
            start.supplier = std::nullopt;
        start.refusals = {{SYS_poll, ENOMEM}, {SYS_ppoll, ENOMEM}};
        return start;
    }

    /// Remarks may come with it.
    bool isGreeting(const std::string& received) const {
        return GetParam() ? received == banner(daemon) : received[1] == 's';
    }

    void expectLittleWork() {
        const auto before = processorTime(daemon.pid());
        observeFor(kObservation);
        EXPECT_LT(processorTime(daemon.pid()) - before, kLittleTime);
    }

    /// The network needs no polling.
    void expectServed() const {
        const Connection station;
        expectExchange(station, request("served"), unknown("served"));
        EXPECT_TRUE(daemon.isAlive());
    }

    Adapter adapter;
    Daemon daemon{start()};
};

TEST_P(NoPollTest, TriesItsLineWithoutHaste) {
    expectLittleWork();
    std::size_t greetings = 0;
    while (adapter.hasInputWithin(std::chrono::milliseconds(0)))
        greetings += isGreeting(GetParam() ? adapter.receiveLine() : adapter.receiveFrame()) ? 1 : 0;
    EXPECT_GT(greetings, 0U);
    EXPECT_LT(greetings, kFewGreetings);
    expectServed();
}

TEST_P(NoPollTest, WaitsForItsLineWithoutHaste) {
    adapter.pull();
    expectLittleWork();
    expectServed();
}

TEST_P(NoPollTest, RunsACommandWithoutHaste) {
    const auto before = processorTime(daemon.pid());
    Connection station;
    expectExchange(station, request("exec command 60 \"sleep 1; echo done\""),
                   answer("exec base64(" + base64("done\n") + ")"));
    EXPECT_LT(processorTime(daemon.pid()) - before, kLittleTime);
}

INSTANTIATE_TEST_SUITE_P(Protocols, NoPollTest, testing::Bool(),
                         [](const auto& information) { return information.param ? "Ascii" : "Binary"; });

} // namespace
