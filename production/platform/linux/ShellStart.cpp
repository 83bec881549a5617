#include "platform/linux/ShellStart.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <pthread.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "platform/Descriptors.h"
#include "platform/Uninterrupted.h"
#include "platform/posix/EndedChildren.h"

namespace System {

namespace {

constexpr char kShell[] = "/bin/sh";
constexpr int kStreams = 3;
constexpr int kNotStarted = 127;

// What follows runs in the child, which shares the parent's memory until it has become the shell:
// nothing but system calls.

void resetSignals() {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        ::sigaction(signal, &action, nullptr);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Has the kernel close all but the streams once the shell is there; also what the daemon's own parent
/// forgot to close.
bool closeOthersOnStart() {
    constexpr unsigned kLast = ~0U;
    if (::syscall(SYS_close_range, kStreams, kLast, CLOSE_RANGE_CLOEXEC) == 0)
        return true;
    const long end = ::sysconf(_SC_OPEN_MAX); // a kernel before 5.11
    for (int descriptor = kStreams; descriptor < end; ++descriptor)
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    return end > 0;
}

bool takeStreams(const int* streams) {
    for (int number = 0; number < kStreams; ++number) {
        // Also where it is the number already, the shell must keep it.
        const bool taken = streams[number] == number ? ::fcntl(number, F_SETFD, 0) == 0
                                                     : ::dup2(streams[number], number) == number;
        if (!taken)
            return false;
    }
    return closeOthersOnStart();
}

[[noreturn]] void becomeShell(const ShellStart& start, int report) {
    resetSignals();
    if (start.streams != nullptr)
        ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    if (start.streams == nullptr || (::setsid() != -1 && takeStreams(start.streams)))
        ::execve(kShell, start.arguments, environ);
    const int error = errno;
    // Nobody may take what goes unreported for a shell that has run its commands.
    if (uninterrupted([&] { return ::write(report, &error, sizeof error); }) != sizeof error)
        ::kill(::getpid(), SIGKILL);
    ::_exit(kNotStarted);
}

// Back in the parent.

/// No signal reaches the child before it has the default handling.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~BlockedSignals() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t m_before{};
};

pid_t launch(const ShellStart& start, int report) {
    const BlockedSignals blocked;
    // A copy of this process, if only of its page tables, costs more than the whole command, and the
    // system's own way of starting a program without one cannot make it adopt others.
    // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.vfork)
    const pid_t pid = ::vfork();
    if (pid == 0)
        becomeShell(start, report); // NOLINT(clang-analyzer-unix.Vfork): nothing but system calls
    return pid;
}

} // namespace

int startShell(const ShellStart& start, pid_t& pid) {
    Descriptor outcome;
    Descriptor report;
    if (!openPipe(outcome, report))
        return errno;
    const pid_t started = launch(start, report.get());
    if (started == -1)
        return errno;
    report.reset();
    int error = 0;
    const ssize_t count = uninterrupted([&] { return ::read(outcome.get(), &error, sizeof error); });
    if (count == 0) { // the pipe has come to its end: the shell is there
        pid = started;
        return 0;
    }
    if (count < 0) {
        error = errno;
        if (::kill(started, SIGKILL) != 0) // whatever it has become
            return error;
    }
    statusAtEndOf(started);
    return error;
}

} // namespace System
