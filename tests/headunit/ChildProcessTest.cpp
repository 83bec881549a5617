#include "unit/ChildProcess.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <fstream>

#include "support/TestFiles.h"
#include "support/UnitErrors.h"

namespace headunit {
namespace {

using namespace headunit_test;
using testing::HasSubstr;

bool exists(pid_t process) {
    return ::kill(process, 0) == 0 || errno != ESRCH;
}

TEST(ChildProcess, GivesTheExitStatusOfItsCommand) {
    ChildProcess child({"sh", "-c", "exit 7"});
    EXPECT_EQ(child.wait(), 7);
    EXPECT_EQ(child.wait(), 7);
    EXPECT_EQ(child.ended(), 7);
}

TEST(ChildProcess, GivesTheSignalThatEndedItsCommand) {
    EXPECT_EQ(ChildProcess({"sh", "-c", "kill -TERM $$"}).wait(), 128 + SIGTERM);
}

TEST(ChildProcess, SaysThatACommandCannotBeStarted) {
    EXPECT_THAT(unitErrorOf([&] { ChildProcess child({"no-such-program"}); }),
                HasSubstr("no-such-program: No such file or directory"));
}

TEST(ChildProcess, RunsUntilItIsKilled) {
    ChildProcess child({"sleep", "1000"});
    EXPECT_FALSE(child.ended());
    child.kill();
    EXPECT_EQ(child.ended(), 128 + SIGKILL);
}

TEST(ChildProcess, GoesWithItsOwner) {
    pid_t process = -1;
    {
        const ChildProcess child({"sleep", "1000"});
        process = child.pid();
        EXPECT_TRUE(exists(process));
    }
    EXPECT_FALSE(exists(process));
}

TEST(ChildProcess, RunsWithNoSignalBlocked) {
    sigset_t all, before;
    sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, &before);
    const int status = ChildProcess({"grep", "-q", "^SigBlk:\\s*0*$", "/proc/self/status"}).wait();
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(status, 0);
}

TEST(Descendants, TakesProcessesAlongWhoseParentHasEnded) {
    const TestFolder folder;
    pid_t orphan = -1;
    {
        const Descendants descendants;
        ASSERT_EQ(ChildProcess({"sh", "-c", "sleep 1000 & echo $! > " + (folder / "pid")}).wait(), 0);
        std::ifstream(folder / "pid") >> orphan;
        ASSERT_GT(orphan, 0);
        EXPECT_TRUE(exists(orphan));
    }
    EXPECT_FALSE(exists(orphan));
}

} // namespace
} // namespace headunit
