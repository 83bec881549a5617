#include "unit/ProcessTable.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "unit/ChildProcess.h"

namespace headunit {
namespace {

using testing::Contains;
using testing::Not;

TEST(ProcessLine, HoldsTheNameAndTheState) {
    const auto running = parseProcessLine("42 (deva-nvaudio) S 1 42 42 0 -1");
    ASSERT_TRUE(running);
    EXPECT_EQ(running->name, "deva-nvaudio");
    EXPECT_FALSE(running->ended);
    EXPECT_TRUE(parseProcessLine("42 (sleep) Z 1 42")->ended);
    EXPECT_TRUE(parseProcessLine("42 (sleep) X 1 42")->ended);
}

TEST(ProcessLine, MayHaveABracketInTheName) {
    EXPECT_EQ(parseProcessLine("7 (a) R (b) S 1")->name, "a) R (b");
}

TEST(ProcessLine, ThatIsNoneIsRecognised) {
    for (const char* line :
         {"", "42", "42 (sleep", "42 sleep) S", "42 )x( S", "42 (sleep)", "42 (sleep) "})
        EXPECT_FALSE(parseProcessLine(line)) << line;
}

TEST(ProcessTable, FindsAProcessAsLongAsItRuns) {
    ChildProcess child({"sleep", "1000"});
    EXPECT_THAT(processesNamed("sleep"), Contains(child.pid()));
    EXPECT_THAT(processesNamed("slee"), Not(Contains(child.pid())));
    ::kill(child.pid(), SIGKILL);
    siginfo_t ended{};
    ::waitid(P_PID, static_cast<id_t>(child.pid()), &ended, WEXITED | WNOWAIT);
    EXPECT_THAT(processesNamed("sleep"), Not(Contains(child.pid()))) << "it has not been reaped";
}

TEST(ProcessTable, DoesNotFindItself) {
    EXPECT_THAT(processesNamed("headunit_unit_test"), Not(Contains(::getpid())));
}

TEST(SignalNumber, ComesFromNamesAndNumbers) {
    EXPECT_EQ(signalNumber("SIGUSR1"), SIGUSR1);
    EXPECT_EQ(signalNumber("USR2"), SIGUSR2);
    EXPECT_EQ(signalNumber("9"), 9);
    EXPECT_EQ(signalNumber("0"), 0);
    for (const char* text : {"", "SIG", "SIGNONE", "usr1", "-1", "65", "1000", "9x"})
        EXPECT_FALSE(signalNumber(text)) << text;
}

} // namespace
} // namespace headunit
