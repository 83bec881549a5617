#include <fcntl.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/Descriptors.h"
#include "platform/Shell.h"
#include "support/ErrorNumber.h"
#include "support/MarkedProcesses.h"
#include "support/RefusedCalls.h"
#include "support/ShellFixture.h"
#include "support/Waiting.h"

using System::Descriptor;
using System::ShellOutcome;
using namespace std::chrono_literals;

namespace {

struct Family {
    const char* name;
    const char* script; // "SLEEP" stands for a process that must be gone after the limit
};

void PrintTo(const Family& family, std::ostream* out) {
    *out << family.script;
}

class ShellKillTest : public ShellFixture, public ::testing::WithParamInterface<Family> {};

} // namespace

TEST_P(ShellKillTest, EndsEverythingThatTheShellStarted) {
    const MarkedProcesses processes;
    const ShellRun shell = runIntoLimit(processes.in(GetParam().script));
    EXPECT_EQ(shell.result.outcome, ShellOutcome::Killed);
    EXPECT_THAT(shell.output, ::testing::HasSubstr("started\n"));
    EXPECT_LT(shell.took, kPromptly * 2);
    // Their ends were ordered; the kernel may still be about it.
    EXPECT_TRUE(eventually([&] { return processes.alive().empty(); }));
}

INSTANTIATE_TEST_SUITE_P(
    , ShellKillTest,
    ::testing::Values(
        Family{"Child", "echo started; SLEEP\n"},
        Family{"TheShellItselfReplaced", "echo started; exec SLEEP\n"},
        Family{"BackgroundChild", "SLEEP & echo started; wait\n"},
        Family{"Pipeline", "echo started; SLEEP | SLEEP | cat\n"},
        Family{"Grandchildren", "sh -c 'sh -c \"SLEEP & SLEEP\" & SLEEP' & echo started; wait\n"},
        Family{"Orphan", "(SLEEP &); echo started; SLEEP\n"},
        Family{"ChildInASessionOfItsOwn",
               "setsid SLEEP &\n"
               "while [ \"$(cut -d' ' -f6 /proc/$!/stat)\" = $$ ]; do :; done\n"
               "echo started; wait\n"},
        Family{"OrphanWhoseSessionLeaderIsGone", "setsid sh -c 'SLEEP &'; echo started; SLEEP\n"},
        Family{"OrphanOfAnotherOrphan",
               "setsid sh -c '(setsid -f SLEEP; SLEEP) &'; echo started; SLEEP\n"},
        Family{"StoppedChild",
               "SLEEP & until grep -q sleep /proc/$!/comm; do :; done\n"
               "kill -STOP $!; echo started; wait\n"},
        Family{"StoppedShell", "SLEEP & echo started; kill -STOP $$; SLEEP\n"},
        Family{"DeafToOtherSignals", "trap '' HUP INT TERM QUIT; SLEEP & echo started; SLEEP\n"},
        Family{"KeepsStartingOthers",
               "sh -c 'while :; do setsid SLEEP & sleep 0.05; done' & echo started; SLEEP\n"}),
    [](const auto& info) { return info.param.name; });

TEST_F(ShellKillTest, LeavesNoZombieBehind) {
    runIntoLimit("sleep 1000 & (setsid sleep 1000 &); echo started; sleep 1000\n");
    siginfo_t info{};
    EXPECT_EQ(errorOf(::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT)), ECHILD);
}

TEST_F(ShellKillTest, TheNextShellWorks) {
    EXPECT_EQ(runIntoLimit("echo started; sleep 1000").result.outcome, ShellOutcome::Killed);
    EXPECT_EQ(run("echo next").output, "next\n");
}

TEST_F(ShellKillTest, TheOutputUpToTheLimitIsThere) {
    EXPECT_EQ(runIntoLimit("echo started; echo 'and more' >&2; sleep 1000; echo never").output,
              "started\nand more\n");
}

// A script whose command is killed before it would say so and run its next line.
TEST_F(ShellKillTest, NothingReactsToTheEndOfAnother) {
    for (int times = 0; times < 5; ++times) {
        const ShellRun shell = runIntoLimit(
            "for n in 1 2 3 4 5; do sh -c 'sleep 1000; echo after' & done\n"
            "sleep 1000 | (cat; echo ended) & echo started; wait\n");
        EXPECT_EQ(shell.result.outcome, ShellOutcome::Killed);
        EXPECT_EQ(shell.output, "started\n");
    }
}

TEST_F(ShellKillTest, ALimitThatHasPassedStillKills) {
    for (const std::chrono::nanoseconds limit : {0ns, 1ns, -1ns}) {
        SCOPED_TRACE(limit.count());
        EXPECT_EQ(run("sleep 1000", limit).result.outcome, ShellOutcome::Killed);
    }
}

TEST_F(ShellKillTest, TellsWhyTheShellCouldNotBeKilled) {
    const auto runWithoutKill = [] {
        Descriptor readEnd;
        Descriptor writeEnd;
        System::openPipe(readEnd, writeEnd);
        // The shell waits for more text as long as this process keeps the pipe open: not for ever.
        const int second = ::fcntl(writeEnd.get(), F_DUPFD_CLOEXEC, 0);
        System::Shell shell;
        shell.start(readEnd.get(), STDOUT_FILENO, STDERR_FILENO);
        refuseSystemCalls({SYS_kill}, EPERM);
        const System::ShellResult result = shell.feedAndWait(std::move(writeEnd), ":\n", 50ms);
        const bool good =
            second >= 0 && result.outcome == ShellOutcome::KillFailed && result.error == EPERM;
        std::_Exit(good ? 0 : 1);
    };
    EXPECT_EXIT(runWithoutKill(), ::testing::ExitedWithCode(0), "");
}
