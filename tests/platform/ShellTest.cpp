#include "platform/Shell.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "platform/Descriptors.h"
#include "support/RefusedCalls.h"
#include "support/Rows.h"
#include "support/ShellFixture.h"

using System::Descriptor;
using System::ShellOutcome;
using namespace std::chrono_literals;

namespace {

constexpr std::size_t kMebibyte = 1024 * 1024;

class ShellTest : public ShellFixture {};

std::string commentLines(std::size_t bytes) {
    const std::string line = "# " + std::string(61, 'x') + "\n";
    std::string text;
    while (text.size() < bytes)
        text += line;
    return text;
}

/// Keeps the calling process from learning how its children ended.
class IgnoredChildren {
public:
    IgnoredChildren() { ::signal(SIGCHLD, SIG_IGN); }
    ~IgnoredChildren() { ::signal(SIGCHLD, SIG_DFL); }
};

} // namespace

TEST_F(ShellTest, ReportsHowTheShellEndedAndWhatItWrote) {
    const Rows<const char*, int, const char*> rows = {
        {"", 0x0000, ""},
        {"echo hello\n", 0x0000, "hello\n"},
        {"echo no line end", 0x0000, "no line end\n"},
        {"echo one\necho two\n", 0x0000, "one\ntwo\n"},
        {"echo out; echo err >&2; echo out", 0x0000, "out\nerr\nout\n"},
        {"exit 0", 0x0000, ""},
        {"exit 3", 0x0300, ""},
        {"exit 255", 0xFF00, ""},
        {"echo before; false", 0x0100, "before\n"},
        {"kill -KILL $$", SIGKILL, ""},
        {"kill -TERM $$", SIGTERM, ""},
        {"exec printf '%s' replaced", 0x0000, "replaced"},
    };
    for (const auto& [text, status, output] : rows) {
        SCOPED_TRACE(text);
        const ShellRun shell = run(text);
        EXPECT_EQ(shell.result.outcome, ShellOutcome::Ended);
        EXPECT_EQ(shell.result.status, status);
        EXPECT_EQ(shell.output, output);
    }
}

TEST_F(ShellTest, ReadsATextLargerThanThePipe) {
    const ShellRun shell = run(commentLines(kMebibyte) + "echo all of it\n");
    EXPECT_EQ(shell.result.outcome, ShellOutcome::Ended);
    EXPECT_EQ(shell.result.status, 0);
    EXPECT_EQ(shell.output, "all of it\n");
}

TEST_F(ShellTest, MayEndWithoutReadingItsText) {
    const ShellRun shell = run("exit\n" + commentLines(kMebibyte));
    EXPECT_EQ(shell.result.outcome, ShellOutcome::Ended);
    EXPECT_EQ(shell.result.status, 0);
    EXPECT_LT(shell.took, kPromptly);
}

TEST_F(ShellTest, MayStopReadingAndGoOn) {
    const ShellRun shell = run("exec <&-; sleep 0.1; echo went on\n" + commentLines(kMebibyte));
    EXPECT_EQ(shell.result.outcome, ShellOutcome::Ended);
    EXPECT_EQ(shell.output, "went on\n");
}

TEST_F(ShellTest, TextThatIsNeverReadDoesNotHoldUpTheLimit) {
    for (const std::string text : {"exec <&-; sleep 1000\n", "sleep 1000\n"}) {
        SCOPED_TRACE(text);
        const ShellRun shell = run(text + commentLines(kMebibyte), 200ms);
        EXPECT_EQ(shell.result.outcome, ShellOutcome::Killed);
        EXPECT_GE(shell.took, 200ms);
        EXPECT_LT(shell.took, kPromptly);
    }
}

TEST_F(ShellTest, InheritsNothingButItsThreeDescriptors) {
    const Descriptor closedOnExec(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    const Descriptor inheritable(::open("/dev/null", O_RDONLY));
    // The fourth is the folder that is being listed.
    EXPECT_EQ(run("ls /proc/self/fd").output, "0\n1\n2\n3\n");
}

TEST_F(ShellTest, ReadsItsCommandsFromThePipeAndWritesToTheFile) {
    const ShellRun shell = run("for n in 0 1 2; do readlink /proc/$$/fd/$n | tr -d '0-9'; done");
    EXPECT_EQ(shell.output, "pipe:[]\n/memfd:output (deleted)\n/memfd:output (deleted)\n");
}

TEST_F(ShellTest, IsStartedAsShWithTheArgumentThatMakesItReadItsInput) {
    EXPECT_EQ(run("tr '\\000' '|' </proc/$$/cmdline; echo").output, "sh|-s|\n");
}

TEST_F(ShellTest, GetsDefaultSignalHandlingWhateverTheCallerHas) {
    ::signal(SIGUSR2, SIG_IGN);
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGUSR1);
    ::sigaddset(&blocked, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &blocked, &before);
    const ShellRun shell =
        run("while read -r key value; do\n"
            "  case $key in SigBlk: | SigIgn:) echo \"0x$value\";; esac\n"
            "done </proc/$$/status\n");
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    ::signal(SIGUSR2, SIG_DFL);

    // Signals 32 and 33 belong to the C library, which lets nobody change them.
    constexpr unsigned long long kOfTheLibrary = 0x180000000;
    unsigned long long blockedThere = ~0ULL;
    unsigned long long ignoredThere = ~0ULL;
    ASSERT_EQ(std::sscanf(shell.output.c_str(), "%llx %llx", &blockedThere, &ignoredThere), 2)
        << shell.output;
    EXPECT_EQ(blockedThere & ~kOfTheLibrary, 0u);
    EXPECT_EQ(ignoredThere & ~kOfTheLibrary, 0u);
}

TEST_F(ShellTest, ABrokenPipeEndsWhatItStarts) {
    EXPECT_EQ(run("{ sh -c 'kill -PIPE $$'; echo $?; } 2>/dev/null").output, "141\n");
}

TEST_F(ShellTest, LeadsASessionOfItsOwn) {
    const ShellRun shell =
        run("read -r pid name state parent group session rest </proc/$$/stat\n"
            "[ $group = $$ ] && [ $session = $$ ] && echo yes\n");
    EXPECT_EQ(shell.output, "yes\n");
}

TEST_F(ShellTest, TellsItsProcessNumber) {
    const Descriptor output(::open("/tmp", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    Descriptor readEnd;
    Descriptor writeEnd;
    ASSERT_TRUE(System::openPipe(readEnd, writeEnd));
    System::Shell shell;
    EXPECT_EQ(shell.pid(), -1);
    ASSERT_EQ(shell.start(readEnd.get(), output.get(), output.get()), 0);
    readEnd.reset();
    EXPECT_EQ(shell.feedAndWait(std::move(writeEnd), "echo $$", kAmple).outcome, ShellOutcome::Ended);
    EXPECT_EQ(contentOf(output), std::to_string(shell.pid()) + "\n");
}

TEST_F(ShellTest, CannotStartWithADescriptorThatIsNotOpen) {
    const Descriptor null(::open("/dev/null", O_RDWR | O_CLOEXEC));
    constexpr int kNotOpen = 1000;
    const Rows<const char*, int, int, int> rows = {
        {"no input", -1, null.get(), null.get()},
        {"no output", null.get(), -1, null.get()},
        {"no error output", null.get(), null.get(), -1},
        {"input is closed", kNotOpen, null.get(), null.get()},
        {"error output is closed", null.get(), null.get(), kNotOpen},
    };
    for (const auto& [what, input, output, errorOutput] : rows) {
        SCOPED_TRACE(what);
        System::Shell shell;
        EXPECT_EQ(shell.start(input, output, errorOutput), EBADF);
    }
}

TEST_F(ShellTest, TellsWhyItCouldNotBeStarted) {
    const auto startWithoutProcesses = [] {
        refuseSystemCalls({SYS_clone, SYS_clone3, SYS_vfork, SYS_fork}, EAGAIN);
        System::Shell shell;
        std::_Exit(shell.start(STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO));
    };
    EXPECT_EXIT(startWithoutProcesses(), ::testing::ExitedWithCode(EAGAIN), "");
}

TEST_F(ShellTest, TellsWhyItCouldNotBeWaitedFor) {
    const IgnoredChildren ignored;
    const ShellRun shell = run("echo done");
    EXPECT_EQ(shell.result.outcome, ShellOutcome::WaitFailed);
    EXPECT_EQ(shell.result.error, ECHILD);
}

TEST_F(ShellTest, WorksOnAKernelWithoutProcessDescriptors) {
    const auto runBoth = [this] {
        refuseSystemCalls({SYS_pidfd_open}, ENOSYS);
        const ShellRun quick = run("echo quick");
        const ShellRun endless = run("sleep 1000", 100ms);
        const bool good = quick.result.outcome == ShellOutcome::Ended && quick.output == "quick\n" &&
                          endless.result.outcome == ShellOutcome::Killed && endless.took < kPromptly;
        std::_Exit(good ? 0 : 1);
    };
    EXPECT_EXIT(runBoth(), ::testing::ExitedWithCode(0), "");
}

TEST_F(ShellTest, AnEndlessLimitIsNoProblem) {
    const ShellRun shell = run("echo quick", std::chrono::nanoseconds::max());
    EXPECT_EQ(shell.result.outcome, ShellOutcome::Ended);
    EXPECT_EQ(shell.output, "quick\n");
}

// The beginning of the text is in the pipe by then, and its end would have the shell run that.
TEST_F(ShellTest, IsKilledWhenItCannotBeGivenItsText) {
    // What refuses the rest refuses what the shell would write, too, but not a file that it makes.
    const std::string ran = ::testing::TempDir() + "ran." + std::to_string(::getpid());
    const auto feedABeginning = [this, &ran] {
        const std::string text = ": >" + ran + " #" + std::string(kMebibyte, 'x');
        refuseWritesBelow(static_cast<std::uint32_t>(text.size()), EIO);
        const ShellRun shell = run(text);
        const bool isCollected = ::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
        const bool good =
            shell.result.outcome == ShellOutcome::FeedFailed && shell.result.error == EIO && isCollected;
        std::_Exit(good ? 0 : 1);
    };
    EXPECT_EXIT(feedABeginning(), ::testing::ExitedWithCode(0), "");
    EXPECT_NE(::access(ran.c_str(), F_OK), 0) << "it has run a part";
    ::unlink(ran.c_str());
}
