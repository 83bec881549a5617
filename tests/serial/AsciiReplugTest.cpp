#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "AsciiDaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

constexpr int kRounds = 100;
constexpr char kRunning[] = "/tmp/running";
constexpr std::chrono::milliseconds kObservation{500};
constexpr std::chrono::milliseconds kNearlyNothing{100};

void nothing() {}

/// The line goes and comes back again and again, at the same point of what is going on.
class AsciiReplugTest : public AsciiDaemonTest {
protected:
    /// `reach` brings about the point at which the line goes; `afterwards` lets the daemon notice.
    void replug(const std::function<void()>& reach, const std::function<void()>& afterwards = nothing) {
        const auto descriptors = openDescriptors(daemon.pid()).size();
        {
            const Witness witness;
            const auto withWitness = descriptors + 1;
            EXPECT_TRUE(witness.seesMore(1));
            for (int round = 0; round < kRounds && !HasFailure(); ++round) {
                SCOPED_TRACE(round);
                reach();
                adapter.pull();
                if (round % 2 == 0) {
                    adapter.plug();
                    afterwards();
                } else {
                    afterwards();
                    EXPECT_TRUE(witness.seesMore(1)); // the line is away for a while
                    adapter.plug();
                }
                expectBanner();
                const std::string name = "round" + std::to_string(round);
                expectExchange(adapter, request(name), unknown(name));
                EXPECT_TRUE(
                    eventually([&] { return openDescriptors(daemon.pid()).size() == withWitness; }));
            }
            EXPECT_TRUE(witness.seesMore(10));
        }
        EXPECT_TRUE(eventually([&] { return openDescriptors(daemon.pid()).size() == descriptors; }));
        expectRest();
        adapter.pull();
        expectRest();
        adapter.plug();
        expectBanner();
    }

private:
    void expectRest() const {
        const auto before = processorTime(daemon.pid());
        observeFor(kObservation);
        EXPECT_LE(processorTime(daemon.pid()) - before, kNearlyNothing);
    }
};

TEST_F(AsciiReplugTest, WhileNothingHappens) {
    replug(nothing);
}

TEST_F(AsciiReplugTest, InTheMiddleOfALine) {
    replug([this] {
        adapter.send("\x02unfinished 1 \"2");
        adapter.waitUntilTaken();
    });
}

TEST_F(AsciiReplugTest, WhileACommandRuns) {
    const auto reach = [this] {
        adapter.send(
            request("exec command 60 \"touch /tmp/running; "
                    "while [ ! -e /tmp/go ]; do sleep 0.01; done; "
                    "rm /tmp/go; head -c 100000 /dev/zero; echo finished >>/tmp/finished\""));
        ASSERT_TRUE(eventually([] { return exists(kRunning); }));
        removeFile(kRunning);
    };
    replug(reach, [] { writeFile("/tmp/go", ""); });
    std::string finished;
    for (int round = 0; round < kRounds; ++round)
        finished += "finished\n";
    EXPECT_EQ(contentOf("/tmp/finished"), finished);
}

TEST_F(AsciiReplugTest, WhileALongAnswerIsWritten) {
    writeFile(kImageVersionFile, std::string(300'000, 'x'));
    replug([this] {
        adapter.send(request("status 01"));
        EXPECT_EQ(adapter.receive(1), "\x02");
    });
}

TEST_F(AsciiReplugTest, BeforeAnAnswerIsRead) {
    replug([this] {
        adapter.send(request("unread"));
        EXPECT_FALSE(adapter.isSilentFor(kPatience));
    });
}

} // namespace
