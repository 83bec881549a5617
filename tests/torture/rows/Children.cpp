// Commands that do not end when they should, and what they leave behind.
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <string>

#include "Ordeal.h"
#include "rows/Processes.h"
#include "rows/Rows.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

// Nobody else sleeps as long.
constexpr char kSleeps[] = "987654";

constexpr const char* kStubborn[] = {
    "trap '' HUP INT QUIT TERM PIPE ALRM USR1; while :; do sleep 987654; done",
    "kill -STOP $$",
    "trap '' TERM; sleep 987654 & sleep 987654 & wait",
    "(setsid sh -c \"trap '' TERM; (setsid sleep 987654 &); sleep 987654\" &); sleep 987654",
    "sleep 987654 & kill -STOP $!; while :; do :; done",
    "for i in 1 2 3 4 5 6 7 8; do (while :; do sleep 987654; done) & done; exec sleep 987654",
};

constexpr const char* kLeavers[] = {
    "sleep 987654 >/dev/null 2>&1 & echo left",
    "(sleep 987654 &) ; echo left",
    "(setsid sleep 987654 >/dev/null 2>&1 <&- &) ; echo left",
    "(setsid sh -c '(setsid sleep 987654 &) ; exit 3' &) ; sleep 0.02; echo left",
};

bool nobodySleeps() {
    return eventually([] { return processesWith(kSleeps).empty(); });
}

} // namespace

void stubbornChildren(Ordeal& ordeal) {
    for (unsigned round = 0; round < ordeal.times(1, 20); ++round) {
        for (const char* text : kStubborn) {
            const auto begin = std::chrono::steady_clock::now();
            ordeal.expect(killedCommand(ordeal.link, 1, text, ""));
            EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1)) << text;
            EXPECT_TRUE(nobodySleeps()) << text;
            ordeal.expect(numbered(ordeal.link, round));
        }
    }
}

void grandchildren(Ordeal& ordeal) {
    std::size_t left = 0;
    for (unsigned round = 0; round < ordeal.times(20, 2'000) && !testing::Test::HasFailure(); ++round) {
        ordeal.expect(shellCommand(ordeal.link, 60, kLeavers[round % std::size(kLeavers)], "left\n"));
        // They live on, and are not the daemon's any more: that is seen when they end.
        EXPECT_TRUE(eventually([] { return !processesWith(kSleeps).empty(); }));
        for (const pid_t pid : processesWith(kSleeps)) {
            ++left;
            ::kill(pid, SIGKILL);
        }
        EXPECT_TRUE(nobodySleeps());
        // Many that end by themselves, at the time when their shell does.
        ordeal.expect(shellCommand(ordeal.link, 60,
                                   "for i in 1 2 3 4 5; do (sleep 0 &) ; done; echo some", "some\n"));
        EXPECT_TRUE(eventually([&] { return childrenOf(ordeal.bench.daemon().pid()).empty(); }));
    }
    ordeal.note = std::to_string(left) + " left behind";
}
