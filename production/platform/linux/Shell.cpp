#include "platform/Shell.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

#include "platform/linux/ProcessTree.h"
#include "platform/posix/EndedChildren.h"
#include "platform/posix/ShellInput.h"

namespace System {

namespace {

using Clock = std::chrono::steady_clock;

// A kernel without process descriptors (before 5.3) is asked this often whether the shell has ended.
constexpr std::chrono::milliseconds kPollWithoutProcessDescriptor{5};
// After the kill the kernel ends a process at once, unless a driver holds it.
constexpr std::chrono::seconds kPatienceAfterKill{2};

Clock::time_point deadlineAfter(std::chrono::nanoseconds limit) {
    const Clock::time_point now = Clock::now();
    return limit < Clock::time_point::max() - now ? now + limit : Clock::time_point::max();
}

/// Attributes and actions of `posix_spawn`, released together.
class SpawnPlan {
public:
    SpawnPlan() {
        ::posix_spawnattr_init(&m_attributes);
        ::posix_spawn_file_actions_init(&m_actions);
    }
    ~SpawnPlan() {
        ::posix_spawn_file_actions_destroy(&m_actions);
        ::posix_spawnattr_destroy(&m_attributes);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    void startFresh() {
        sigset_t all;
        sigset_t none;
        ::sigfillset(&all);
        ::sigemptyset(&none);
        ::posix_spawnattr_setsigdefault(&m_attributes, &all);
        ::posix_spawnattr_setsigmask(&m_attributes, &none);
        ::posix_spawnattr_setflags(&m_attributes,
                                   POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID);
    }
    int map(int from, int to) { return ::posix_spawn_file_actions_adddup2(&m_actions, from, to); }
    /// Also what the daemon's own parent forgot to close.
    int closeFrom(int lowest) { return ::posix_spawn_file_actions_addclosefrom_np(&m_actions, lowest); }

    int spawn(pid_t& pid) {
        char name[] = "sh";
        char readStandardInput[] = "-s";
        char* const arguments[] = {name, readStandardInput, nullptr};
        return ::posix_spawn(&pid, "/bin/sh", &m_actions, &m_attributes, arguments, environ);
    }

private:
    posix_spawnattr_t m_attributes;
    posix_spawn_file_actions_t m_actions;
};

/// Waits for one child with a deadline, and for a pipe to take more bytes meanwhile.
class ChildWait {
public:
    explicit ChildWait(pid_t pid) : m_pid(pid), m_descriptor(openProcess(pid)) {}

    /// Waits until the child may have ended, or `pipe` (unless -1) can take bytes or has lost its
    /// reader.
    void waitForEvent(int pipe, Clock::time_point deadline) const {
        pollfd events[] = {{m_descriptor.get(), POLLIN, 0}, {pipe, POLLOUT, 0}};
        ::poll(events, 2, millisecondsUntil(deadline));
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

ShellResult killAndCollect(pid_t pid, const ProcessTree& tree, const ChildWait& child) {
    if (const int error = tree.kill(pid); error != 0)
        return {ShellOutcome::KillFailed, 0, error};
    int status = 0;
    int ignored = 0;
    const Clock::time_point deadline = Clock::now() + kPatienceAfterKill;
    while (!child.ended(status, ignored) && Clock::now() < deadline)
        child.waitForEvent(-1, deadline);
    collectEndedChildren();
    return {ShellOutcome::Killed, status, 0};
}

} // namespace

class Shell::Tracking {
public:
    ProcessTree tree;
};

Shell::Shell() = default;
Shell::~Shell() = default;

int Shell::start(int input, int output, int errorOutput) {
    m_tracking = std::make_unique<Tracking>();
    SpawnPlan plan;
    plan.startFresh();
    const int targets[][2] = {
        {input, STDIN_FILENO}, {output, STDOUT_FILENO}, {errorOutput, STDERR_FILENO}};
    for (const auto& [from, to] : targets) {
        if (const int error = plan.map(from, to); error != 0)
            return error;
    }
    if (const int error = plan.closeFrom(STDERR_FILENO + 1); error != 0)
        return error;
    return plan.spawn(m_pid);
}

ShellResult Shell::feedAndWait(Descriptor input, std::string_view text, std::chrono::nanoseconds limit) {
    const Clock::time_point deadline = deadlineAfter(limit);
    const ChildWait child(m_pid);
    ShellInput commands(std::move(input), text);
    int status = 0;
    int error = 0;
    commands.feed();
    child.waitForEvent(commands.pipe(), deadline);
    while (!child.ended(status, error)) {
        if (Clock::now() >= deadline)
            return killAndCollect(m_pid, m_tracking->tree, child);
        commands.feed();
        child.waitForEvent(commands.pipe(), deadline);
    }
    if (error != 0)
        return {ShellOutcome::WaitFailed, 0, error};
    return {ShellOutcome::Ended, status, 0};
}

} // namespace System
