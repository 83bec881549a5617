#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "line/BinaryLink.h"
#include "support/Connection.h"
#include "support/Lines.h"
#include "support/UnitFiles.h"

namespace {

using namespace std::string_literals;

long long millisecondsSinceStart() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

TEST(BinaryAnnouncement, ComesWithoutBeingAskedFor) {
    Adapter adapter;
    const Daemon daemon(withStationLine());
    EXPECT_EQ(adapter.receive(24), statusFrame(daemon.buildStamp(), false));
    adapter.send(kAcknowledgement);
    EXPECT_TRUE(adapter.isSilentFor(std::chrono::milliseconds(1500)));
    EXPECT_EQ(errorLines(daemon), std::vector<std::string>());
}

TEST(BinaryAnnouncement, NeedsNoProperAcknowledgement) {
    struct Row {
        const char* acknowledgement;
        const char* complaint;
    };
    const Row kRows[] = {{"", LinkErrors::kNoAcknowledgement},
                         {"\x02", LinkErrors::kHalfAcknowledgement},
                         {"\x02\x07", LinkErrors::kNotAnAcknowledgement}};
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.complaint);
        Adapter adapter;
        const Daemon daemon(withStationLine());
        EXPECT_EQ(adapter.receive(24), statusFrame(daemon.buildStamp(), false));
        adapter.send(row.acknowledgement);
        EXPECT_TRUE(daemon.waitForError(row.complaint));
        EXPECT_TRUE(adapter.isSilentFor(std::chrono::milliseconds(1500)));

        adapter.send(std::string(kStatusRequest).append(kAcknowledgement));
        EXPECT_EQ(adapter.receive(24), statusFrame(daemon.buildStamp(), true));
        EXPECT_EQ(errorLines(daemon, 1), std::vector<std::string>{row.complaint});
    }
}

TEST(BinaryAnnouncement, ItsRuntimeIsThatOfTheMachine) {
    constexpr long long kNoticed = 7500;
    const long long before = millisecondsSinceStart();
    if (before <= kNoticed)
        GTEST_SKIP() << "the machine has only just been started";
    Adapter adapter;
    const Daemon daemon(withStationLine());
    EXPECT_EQ(adapter.receive(24), statusFrame(daemon.buildStamp(), false));
    const std::string start = "### ATTENTION: Command-Runtime for \"s\": ";
    ASSERT_TRUE(daemon.waitForError(" ms\n"));
    const std::string text = daemon.error();
    const std::size_t number = text.find(start);
    ASSERT_NE(number, std::string::npos) << text;
    const long long runtime = std::atoll(text.c_str() + number + start.size());
    EXPECT_GE(runtime, before);
    EXPECT_LE(runtime, millisecondsSinceStart() + 1);
}

TEST(BinaryAnnouncement, AStatusOverTcpBeforeDoesNotCount) {
    Adapter adapter;
    adapter.pull();
    const Daemon daemon(withStationLine());
    Connection station;
    expectExchange(station, request("status"),
                   answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4"));
    adapter.plug();
    EXPECT_EQ(adapter.receive(24), statusFrame(daemon.buildStamp(), false));
}

class BinaryReplugged : public BinaryLinkTest {};

TEST_F(BinaryReplugged, EveryFurtherOneIsAnnouncedAsSuch) {
    for (int round = 0; round < 3; ++round) {
        adapter.pull();
        adapter.plug();
        expectFrames("\x28"s + "dStartup State sent but requested again" + "\x1F"s +
                     "dProbaby due to connection cut" + status(true));
        acknowledge();
        expectServed();
        expectErrors(LinkErrors::kLineGone);
    }
}

/// What makes the startup status fail; the unit tries again until the revision can be read.
struct BadRevision {
    const char* name;
    void (*prepare)();
};

class BinaryRevision : public testing::TestWithParam<BadRevision> {};

TEST_P(BinaryRevision, ABadRevisionFileIsReadAgain) {
    Adapter adapter;
    removeFile(kRevisionFile);
    GetParam().prepare();
    const Daemon daemon(withStationLine());
    // Only what announces the second attempt.
    const std::string repetition = repetitionFrames();
    EXPECT_EQ(adapter.receive(repetition.size()), repetition);
    const std::vector<std::string> kAttempt = {LinkErrors::kEmptyResponse, LinkErrors::kReadFailed,
                                               LinkErrors::kLoop, LinkErrors::kNotOpen};
    std::vector<std::string> lines = errorLines(daemon, kAttempt.size());
    ASSERT_GE(lines.size(), kAttempt.size());
    lines.resize(kAttempt.size());
    EXPECT_EQ(lines, kAttempt);

    if (exists(kRevisionFile))
        removeFile(kRevisionFile);
    writeFile(kRevisionFile, "1B");
    std::string status = statusFrame(daemon.buildStamp(), true);
    status[16] = 0x1B;
    std::string frame;
    do
        frame = adapter.receiveFrame();
    while (frame == debugFrame("Startup State sent but requested again") ||
           frame == debugFrame("Probaby due to connection cut"));
    EXPECT_EQ(frame, status);
    adapter.send(kAcknowledgement);
    adapter.send(std::string(kStatusRequest).append(kAcknowledgement));
    EXPECT_EQ(adapter.receive(status.size()), status);
}

INSTANTIATE_TEST_SUITE_P(
    Contents, BinaryRevision,
    testing::Values(BadRevision{"Missing", [] {}},
                    BadRevision{"Empty", [] { writeFile(kRevisionFile, ""); }},
                    BadRevision{"NoNumber", [] { writeFile(kRevisionFile, "none"); }},
                    BadRevision{"TooLarge", [] { writeFile(kRevisionFile, "12345"); }},
                    BadRevision{"JustTooLarge", [] { writeFile(kRevisionFile, "10000"); }},
                    BadRevision{"MoreThan32Bits", [] { writeFile(kRevisionFile, "100000001"); }},
                    BadRevision{"MoreThan64Bits", [] { writeFile(kRevisionFile, "10000000000000001"); }},
                    BadRevision{"Silent", [] { makeFifo(kRevisionFile); }}),
    [](const testing::TestParamInfo<BadRevision>& row) { return row.param.name; });

TEST(BinaryAnnouncement, WaitsForARevisionThatTakesAMoment) {
    Adapter adapter;
    removeFile(kRevisionFile);
    makeFifo(kRevisionFile);
    // Waits for the daemon, so that it is always later.
    std::thread writer([] { writeFile(kRevisionFile, "1A\n"); });
    const Daemon daemon(withStationLine());
    EXPECT_EQ(adapter.receive(24), statusFrame(daemon.buildStamp(), false));
    writer.join();
}

} // namespace
