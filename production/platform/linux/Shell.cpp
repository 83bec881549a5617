#include "platform/Shell.h"

#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <thread>

#include "platform/PatientPoll.h"
#include "platform/linux/ProcessTree.h"
#include "platform/linux/ShellStart.h"
#include "platform/posix/EndedChildren.h"
#include "platform/posix/ShellInput.h"

namespace System {

namespace {

using Clock = std::chrono::steady_clock;

// A kernel without process descriptors (before 5.3) is asked this often whether the shell has ended.
constexpr std::chrono::milliseconds kPollWithoutProcessDescriptor{5};
// The kernel stops and ends a process at once, unless a driver holds it.
constexpr std::chrono::seconds kPatience{2};
constexpr std::chrono::milliseconds kPause{1};
constexpr std::size_t kCollectorStackBytes = 0x10000;

Clock::time_point deadlineAfter(std::chrono::nanoseconds limit) {
    const Clock::time_point now = Clock::now();
    return limit < Clock::time_point::max() - now ? now + limit : Clock::time_point::max();
}

/// Waits for one child with a deadline, and for a pipe to take more bytes meanwhile.
class ChildWait {
public:
    explicit ChildWait(pid_t pid) : m_pid(pid), m_descriptor(openProcess(pid)) {}

    /// Waits until the child may have ended, or `pipe`
    /// (unless -1) can take bytes or has lost its reader.
    void waitForEvent(int pipe, Clock::time_point deadline) const {
        pollfd events[] = {{m_descriptor.get(), POLLIN, 0}, {pipe, POLLOUT, 0}};
        patientPoll(events, 2, millisecondsUntil(deadline));
    }

    /// True when the child has ended or can no longer be waited for (then `error` is set).
    bool ended(int& status, int& error) const {
        const pid_t found = ::waitpid(m_pid, &status, WNOHANG);
        if (found < 0 && errno != EINTR) {
            error = errno;
            return true;
        }
        return found == m_pid;
    }

private:
    static Descriptor openProcess(pid_t pid) {
        return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
    }

    int millisecondsUntil(Clock::time_point deadline) const {
        const auto now = Clock::now();
        if (deadline <= now)
            return 0;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now) +
                          std::chrono::milliseconds(1);
        const auto longest = m_descriptor ? std::chrono::milliseconds(std::numeric_limits<int>::max())
                                          : kPollWithoutProcessDescriptor;
        return static_cast<int>(std::min(left, longest).count());
    }

    pid_t m_pid;
    Descriptor m_descriptor;
};

/// Has the shell start nothing more. Returns once it is so, or the shell has ended, or has had its time.
/// 0, or the error number that stopping failed with.
int stop(pid_t pid) {
    if (::kill(pid, SIGSTOP) != 0)
        return errno;
    const Clock::time_point deadline = Clock::now() + kPatience;
    siginfo_t info{};
    while (::waitid(P_PID, static_cast<id_t>(pid), &info, WSTOPPED | WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0 && Clock::now() < deadline)
        std::this_thread::sleep_for(kPause);
    return 0;
}

/// The thread that collects a child, whose number stands in the pointer.
void* collect(void* child) {
    statusAtEndOf(static_cast<pid_t>(reinterpret_cast<std::intptr_t>(child)));
    return nullptr;
}

/// Leaves a child whose end nobody waits for to a thread of its own. Without one the next shell finds
/// it.
void collectWhenItEnds(pid_t child) {
    pthread_attr_t attributes;
    if (::pthread_attr_init(&attributes) != 0)
        return;
    pthread_t thread{};
    if (::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED) == 0 &&
        ::pthread_attr_setstacksize(&attributes, kCollectorStackBytes) == 0)
        ::pthread_create(&thread, &attributes, collect,
                         reinterpret_cast<void*>(static_cast<std::intptr_t>(child)));
    ::pthread_attr_destroy(&attributes);
}

ShellResult endedResult(int status, int error) {
    if (error != 0)
        return {ShellOutcome::WaitFailed, 0, error};
    return {ShellOutcome::Ended, status, 0};
}

ShellResult killFailed(pid_t pid, int error) {
    collectWhenItEnds(pid);
    return {ShellOutcome::KillFailed, 0, error};
}

ShellResult killAndCollect(pid_t pid, const ChildWait& child) {
    if (const int error = stop(pid); error != 0)
        return killFailed(pid, error);
    int status = 0;
    int error = 0;
    if (child.ended(status, error)) // at the last moment; what it has left running lives on
        return endedResult(status, error);
    if (error = killProcessTree(pid); error != 0)
        return killFailed(pid, error);
    const Clock::time_point deadline = Clock::now() + kPatience;
    bool ended = child.ended(status, error);
    while (!ended && Clock::now() < deadline) {
        child.waitForEvent(-1, deadline);
        ended = child.ended(status, error);
    }
    if (!ended)
        collectWhenItEnds(pid);
    return {ShellOutcome::Killed, status, 0};
}

} // namespace

int Shell::start(int input, int output, int errorOutput) {
    collectEndedChildren(); // a shell that could not be ended in time
    char name[] = "sh";
    char readStandardInput[] = "-s";
    char* const arguments[] = {name, readStandardInput, nullptr};
    const int streams[] = {input, output, errorOutput};
    return startShell({arguments, streams}, m_pid);
}

ShellResult Shell::feedAndWait(Descriptor input, std::string_view text,
                               std::chrono::nanoseconds limit) const {
    const Clock::time_point deadline = deadlineAfter(limit);
    const ChildWait child(m_pid);
    ShellInput commands(std::move(input), text);
    int status = 0;
    int error = 0;
    for (;;) {
        if (commands.feed(error) == ShellInput::Progress::Failed) {
            killAndCollect(m_pid, child);
            return {ShellOutcome::FeedFailed, 0, error};
        }
        child.waitForEvent(commands.pipe(), deadline);
        if (child.ended(status, error))
            return endedResult(status, error);
        if (Clock::now() >= deadline)
            return killAndCollect(m_pid, child);
    }
}

} // namespace System
