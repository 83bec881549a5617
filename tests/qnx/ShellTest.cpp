// A shell: how it is started, fed and waited for, and what becomes of each way that the wait can end.
#include "platform/Shell.h"

#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>

#include "QnxTest.h"

using System::Descriptor;
using System::ShellOutcome;
using System::ShellResult;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

using namespace std::chrono_literals;

constexpr int kPid = 4711;
constexpr int kPipe = 9;

// Realtime clock, the states SEND and REPLY, no event, five seconds, no time left over.
constexpr char kLimit[] = "TimerTimeout 0 0x50 null 5000000000 null";

std::string waitForShell() {
    char line[64];
    std::snprintf(line, sizeof line, "waitpid 4711 set 0x%x", static_cast<unsigned>(WEXITED));
    return line;
}

/// How the wait for the shell succeeds.
FakeSystem::Result ended(int status) {
    return {kPid, 0, {}, [status](void* filled) { *static_cast<int*>(filled) = status; }};
}

class QnxShellTest : public QnxTest {
protected:
    void SetUp() override {
        FakeSystem::next("spawn", {kPid});
        ASSERT_EQ(m_shell.start(5, 6, 6), 0);
        m_starting = FakeSystem::calls();
    }

    ShellResult run(const std::string& text = "ls", std::chrono::nanoseconds limit = 5s) {
        return m_shell.feedAndWait(Descriptor(kPipe), text, limit);
    }

    static void expectFailure(const ShellResult& result, ShellOutcome outcome, int error) {
        EXPECT_EQ(result.outcome, outcome);
        EXPECT_EQ(result.error, error);
    }

    System::Shell m_shell;
    std::vector<std::string> m_starting;
};

} // namespace

TEST_F(QnxShellTest, ItIsStartedWithAMapOfThreeDescriptors) {
    EXPECT_EQ(m_shell.pid(), kPid);
    // Signals as a new process finds them, a process group of its own, the daemon's environment.
    EXPECT_THAT(m_starting, ElementsAre("waitpid -1 null 0x1",
                                        "spawn \"/bin/sh\" 3 {5 6 6} flags=0x7 pgroup=0 sigmask=none "
                                        "sigdefault=all {\"sh\" \"-s\"} null"));
}

TEST_F(QnxShellTest, ShellsThatWereLeftAloneAreCollectedBeforeTheNextOne) {
    FakeSystem::next("waitpid", {4001});
    FakeSystem::next("waitpid", {4002});
    FakeSystem::next("spawn", {kPid});
    System::Shell next;
    EXPECT_EQ(next.start(5, 6, 6), 0);
    EXPECT_CALLS("waitpid -1 null 0x1", "waitpid -1 null 0x1", "waitpid -1 null 0x1",
                 StartsWith("spawn "));
}

TEST_F(QnxShellTest, AShellThatCannotBeStartedSaysWhy) {
    FakeSystem::fail("spawn", ENOENT);
    System::Shell missing;
    EXPECT_EQ(missing.start(5, 6, 6), ENOENT);
}

TEST_F(QnxShellTest, TheTimeoutIsArmedRightBeforeTheWait) {
    FakeSystem::next("waitpid", ended(0));
    run();
    EXPECT_CALLS("fcntl 9 4 0x80", "write 9 \"ls\"", "close 9", kLimit, waitForShell());
}

TEST_F(QnxShellTest, TheLimitIsPassedOnToTheNanosecond) {
    FakeSystem::next("waitpid", ended(0));
    run("ls", 65535s + 1ns);
    EXPECT_THAT(FakeSystem::calls(), Contains("TimerTimeout 0 0x50 null 65535000000001 null"));
    FakeSystem::next("waitpid", ended(0));
    run("ls", std::chrono::nanoseconds::max());
    EXPECT_THAT(FakeSystem::calls(), Contains("TimerTimeout 0 0x50 null 9223372036854775807 null"));
}

TEST_F(QnxShellTest, AnEmptyTextIsOnlyTheEndOfTheInput) {
    FakeSystem::next("waitpid", ended(0));
    EXPECT_EQ(run("").outcome, ShellOutcome::Ended);
    EXPECT_CALLS("fcntl 9 4 0x80", "close 9", kLimit, waitForShell());
}

TEST_F(QnxShellTest, TheStatusOfAShellThatEndedComesBackWhole) {
    for (const int status : {0, 0x100, 9, 260, 0x1234}) {
        FakeSystem::next("waitpid", ended(status));
        const ShellResult result = run();
        EXPECT_EQ(result.outcome, ShellOutcome::Ended);
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.error, 0);
    }
}

TEST_F(QnxShellTest, AWaitThatRunsOutOfTimeLeavesTheShellAlone) {
    FakeSystem::fail("waitpid", ETIMEDOUT);
    expectFailure(run(), ShellOutcome::WaitFailed, ETIMEDOUT);
    EXPECT_THAT(FakeSystem::calls(), Not(Contains(StartsWith("kill"))));
}

TEST_F(QnxShellTest, AnyOtherFailureOfTheWaitLeavesTheShellAlone) {
    for (const int error : {ECHILD, EINVAL, ENOSYS}) {
        FakeSystem::fail("waitpid", error);
        expectFailure(run(), ShellOutcome::WaitFailed, error);
        EXPECT_THAT(FakeSystem::calls(), Not(Contains(StartsWith("kill"))));
    }
}

TEST_F(QnxShellTest, AnInterruptedWaitKillsTheShellAndItsGroup) {
    FakeSystem::fail("waitpid", EINTR);
    FakeSystem::next("waitpid", ended(9));
    const ShellResult result = run();
    EXPECT_EQ(result.outcome, ShellOutcome::Killed);
    EXPECT_EQ(result.status, 9);
    EXPECT_CALLS("fcntl 9 4 0x80", "write 9 \"ls\"", "close 9", kLimit, waitForShell(), "kill 4711 9",
                 "kill -4711 9", "TimerTimeout 0 0x50 null 2000000000 null", waitForShell());
}

TEST_F(QnxShellTest, AShellThatCannotBeKilledIsToldApart) {
    FakeSystem::fail("waitpid", EINTR);
    FakeSystem::fail("kill", EPERM);
    expectFailure(run(), ShellOutcome::KillFailed, EPERM);
    EXPECT_THAT(FakeSystem::calls(), Not(Contains("kill -4711 9")));
}

TEST_F(QnxShellTest, AKilledShellThatDoesNotGoIsStillAKilledOne) {
    FakeSystem::fail("waitpid", EINTR);
    FakeSystem::fail("waitpid", ETIMEDOUT);
    EXPECT_EQ(run().outcome, ShellOutcome::Killed);
}

TEST_F(QnxShellTest, WithoutATimeoutNobodyWaits) {
    FakeSystem::fail("TimerTimeout", EAGAIN);
    expectFailure(run(), ShellOutcome::WaitFailed, EAGAIN);
    EXPECT_THAT(FakeSystem::calls(), Not(Contains(waitForShell())));
}

TEST_F(QnxShellTest, ATextLongerThanThePipeIsFedWhileTheShellReads) {
    FakeSystem::next("write", {2});
    FakeSystem::fail("write", EAGAIN);
    FakeSystem::fail("write", EINTR);
    FakeSystem::next("waitpid", ended(0));
    EXPECT_EQ(run("echo long", 60s).outcome, ShellOutcome::Ended);
    const std::vector<std::string> calls = FakeSystem::calls();
    EXPECT_THAT(calls, ElementsAre("fcntl 9 4 0x80", "write 9 \"echo long\"", "write 9 \"ho long\"",
                                   "poll 9:0x4 60000", "write 9 \"ho long\"", "write 9 \"ho long\"",
                                   "close 9", StartsWith("TimerTimeout 0 0x50 null "), waitForShell()));
    // The time that it took is part of the limit.
    EXPECT_THAT(calls, Not(Contains("TimerTimeout 0 0x50 null 60000000000 null")));
}

TEST_F(QnxShellTest, AShellThatDoesNotReadInTimeHasRunOutOfIt) {
    FakeSystem::fail("write", EAGAIN);
    FakeSystem::fail("write", EAGAIN);
    expectFailure(run("ls", 1ns), ShellOutcome::WaitFailed, ETIMEDOUT);
    // Were the pipe closed before, the shell would run what it has got of the text.
    EXPECT_CALLS("fcntl 9 4 0x80", "write 9 \"ls\"", "poll 9:0x4 1", "write 9 \"ls\"", "kill 4711 9",
                 "kill -4711 9", "TimerTimeout 0 0x50 null 2000000000 null", waitForShell(), "close 9");
}

TEST_F(QnxShellTest, AShellThatCannotBeGivenTheRestOfItsTextIsKilledBeforeItsInputEnds) {
    FakeSystem::next("write", {11});
    FakeSystem::fail("write", EIO);
    expectFailure(run("echo abcdefghijkl"), ShellOutcome::FeedFailed, EIO);
    EXPECT_CALLS("fcntl 9 4 0x80", "write 9 \"echo abcdefghijkl\"", "write 9 \"ghijkl\"", "kill 4711 9",
                 "kill -4711 9", "TimerTimeout 0 0x50 null 2000000000 null", waitForShell(), "close 9");
}

TEST_F(QnxShellTest, AShellWhosePipeCannotBeUsedWithoutWaitingIsKilled) {
    FakeSystem::fail("fcntl", EBADF);
    expectFailure(run(), ShellOutcome::FeedFailed, EBADF);
    EXPECT_THAT(FakeSystem::calls(), Not(Contains(StartsWith("write"))));
}

TEST_F(QnxShellTest, AShellThatReadsNoMoreIsWaitedFor) {
    FakeSystem::fail("write", EPIPE);
    FakeSystem::next("waitpid", ended(0));
    EXPECT_EQ(run().outcome, ShellOutcome::Ended);
    EXPECT_CALLS("fcntl 9 4 0x80", "write 9 \"ls\"", "close 9", kLimit, waitForShell());
}
