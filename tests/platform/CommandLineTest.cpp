#include "platform/CommandLine.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "support/RefusedCalls.h"

namespace {

/// The signal mask and the ignored signals of the calling process, for its lifetime.
class OddSignals {
public:
    OddSignals() {
        sigset_t blocked;
        ::sigemptyset(&blocked);
        ::sigaddset(&blocked, SIGUSR1);
        ::sigprocmask(SIG_BLOCK, &blocked, &m_before);
        ::signal(SIGPIPE, SIG_IGN);
        ::signal(SIGUSR2, SIG_IGN);
    }
    ~OddSignals() {
        ::signal(SIGUSR2, SIG_DFL);
        ::signal(SIGPIPE, SIG_DFL);
        ::sigprocmask(SIG_SETMASK, &m_before, nullptr);
    }
    OddSignals(const OddSignals&) = delete;
    OddSignals& operator=(const OddSignals&) = delete;

private:
    sigset_t m_before{};
};

} // namespace

TEST(CommandLineTest, ReturnsHowItEnded) {
    EXPECT_EQ(System::runCommandLine("true"), 0);
    EXPECT_EQ(System::runCommandLine("exit 3"), 0x300);
    EXPECT_EQ(System::runCommandLine("echo three words >/dev/null; exit 255"), 0xFF00);
    EXPECT_EQ(System::runCommandLine("kill -9 $$"), SIGKILL);
}

TEST(CommandLineTest, GetsDefaultSignalHandlingWhateverTheCallerHas) {
    const OddSignals odd;
    EXPECT_EQ(System::runCommandLine("kill -PIPE $$"), SIGPIPE);
    EXPECT_EQ(System::runCommandLine("kill -USR1 $$"), SIGUSR1);
    EXPECT_EQ(System::runCommandLine("kill -USR2 $$"), SIGUSR2);
}

TEST(CommandLineTest, InheritsTheCallersDescriptorsAndSession) {
    const std::string sameErrors = "[ /proc/$$/fd/2 -ef /proc/" + std::to_string(::getpid()) + "/fd/2 ]";
    EXPECT_EQ(System::runCommandLine(sameErrors.c_str()), 0);
    const std::string sameSession =
        "[ $(cut -d' ' -f6 /proc/$$/stat) = " + std::to_string(::getsid(0)) + " ]";
    EXPECT_EQ(System::runCommandLine(sameSession.c_str()), 0);
}

TEST(CommandLineTest, SaysThatItCouldNotBeRun) {
    const auto runWithoutProcesses = [] {
        refuseSystemCalls({SYS_clone, SYS_clone3, SYS_vfork, SYS_fork}, EAGAIN);
        const bool good = System::runCommandLine("true") == -1 && errno == EAGAIN;
        std::_Exit(good ? 0 : 1);
    };
    EXPECT_EXIT(runWithoutProcesses(), ::testing::ExitedWithCode(0), "");
}

TEST(CommandLineTest, AShellThatCannotEvenTellThatItCouldNotBeRunHasNoExitStatus) {
    const auto runWithoutExecution = [] {
        refuseSystemCalls({SYS_execve, SYS_write}, EIO);
        const int status = System::runCommandLine("true");
        std::_Exit(WIFSIGNALED(status) ? 0 : 1);
    };
    EXPECT_EXIT(runWithoutExecution(), ::testing::ExitedWithCode(0), "");
}

TEST(CommandLineTest, AShellOfWhichNothingCanBeLearntIsAnError) {
    const auto runWithoutReading = [] {
        refuseSystemCalls({SYS_read}, EIO);
        const bool good = System::runCommandLine("sleep 60") == -1 && errno == EIO;
        std::_Exit(good ? 0 : 1);
    };
    EXPECT_EXIT(runWithoutReading(), ::testing::ExitedWithCode(0), "");
}
