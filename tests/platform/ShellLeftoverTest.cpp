#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "platform/Shell.h"
#include "support/ErrorNumber.h"
#include "support/MarkedProcesses.h"
#include "support/ShellFixture.h"
#include "support/Waiting.h"

using System::ShellOutcome;
using ::testing::Contains;

namespace {

struct Leftover {
    const char* name;
    const char* script; // leaves exactly one "SLEEP" running
};

void PrintTo(const Leftover& leftover, std::ostream* out) {
    *out << leftover.script;
}

/// What a shell that ended in time left running is the business of whoever wrote its text.
class ShellLeftoverTest : public ShellFixture, public ::testing::WithParamInterface<Leftover> {
protected:
    void leaveOneRunning() {
        const ShellRun shell = run(m_processes.in(GetParam().script));
        EXPECT_EQ(shell.result.outcome, ShellOutcome::Ended);
        EXPECT_LT(shell.took, kPromptly);
        ASSERT_TRUE(eventually([this] { return m_processes.sleeping().size() == 1; }));
    }

    MarkedProcesses m_processes;
};

} // namespace

TEST_P(ShellLeftoverTest, OutlivesLaterShellsAndTheirLimits) {
    leaveOneRunning();
    const auto before = m_processes.alive();
    EXPECT_EQ(run("echo later").output, "later\n");
    EXPECT_EQ(m_processes.alive(), before);
    EXPECT_EQ(runIntoLimit("(setsid sleep 1000 &); echo started; sleep 1000").result.outcome,
              ShellOutcome::Killed);
    EXPECT_EQ(m_processes.alive(), before);
}

INSTANTIATE_TEST_SUITE_P(
    , ShellLeftoverTest,
    ::testing::Values(
        Leftover{"BackgroundChild", "SLEEP &\n"},
        Leftover{"ChildInASessionOfItsOwn", "setsid SLEEP &\n"}, Leftover{"Orphan", "(SLEEP &)\n"},
        Leftover{"OrphanInASessionOfItsOwn", "setsid -f SLEEP\n"},
        Leftover{"Stopped", "SLEEP & until grep -q sleep /proc/$!/comm; do :; done; kill -STOP $!\n"}),
    [](const auto& info) { return info.param.name; });

TEST_F(ShellLeftoverTest, MayGoOnStartingProcesses) {
    MarkedProcesses processes;
    // The mark stands where the loop finds its own name.
    const ShellRun first =
        run(processes.in("sh -c 'while :; do sleep 0.02; done' 'SLEEP' >/dev/null & echo $!\n"));
    EXPECT_EQ(first.result.outcome, ShellOutcome::Ended);
    const auto loop = static_cast<pid_t>(std::stoi(first.output));
    EXPECT_EQ(runIntoLimit("echo started; sleep 1000").result.outcome, ShellOutcome::Killed);
    EXPECT_THAT(processes.alive(), Contains(loop));
}

TEST_F(ShellLeftoverTest, MayStartOrphansWhileALaterShellRunsIntoItsLimit) {
    // A second attempt must not find what the leftover of the first one has done meanwhile.
    for (std::chrono::milliseconds limit{300}; limit < kPromptly; limit *= 2) {
        MarkedProcesses processes;
        const std::string folder = ::testing::TempDir() + "leftover." + std::to_string(::getpid()) +
                                   "." + std::to_string(limit.count());
        std::filesystem::create_directory(folder);
        const std::string wait = "/bin/sh -c 'until [ -e " + folder + "/go ]; do sleep 0.01; done; ";
        run(processes.in(wait + "setsid -f SLEEP; (SLEEP &); touch " + folder + "/done' &\n"));
        const ShellRun later = run("touch " + folder + "/go; until [ -e " + folder +
                                       "/done ]; do sleep 0.01; done; echo started; sleep 1000",
                                   limit);
        EXPECT_EQ(later.result.outcome, ShellOutcome::Killed);
        const bool hasStarted = later.output == "started\n";
        EXPECT_TRUE(!hasStarted || eventually([&] { return processes.sleeping().size() == 2; }));
        std::filesystem::remove_all(folder);
        if (hasStarted)
            return;
    }
    FAIL() << "no limit was long enough to start them";
}

TEST_F(ShellLeftoverTest, IsNoLongerAChildOfTheCaller) {
    const ShellRun first = run(m_processes.in("SLEEP & setsid SLEEP & (setsid -f SLEEP); echo left"));
    EXPECT_EQ(first.result.outcome, ShellOutcome::Ended);
    siginfo_t info{};
    EXPECT_EQ(errorOf(::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT)), ECHILD);
}
