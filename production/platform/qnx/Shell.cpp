#include "platform/Shell.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <limits>
#include <utility>

#include "platform/posix/EndedChildren.h"
#include "platform/posix/ShellInput.h"
#include "platform/qnx/WaitLimit.h"

namespace System {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::nanoseconds;

// After the kill the kernel ends a process at once, unless a driver holds it.
constexpr std::chrono::seconds kPatienceAfterKill{2};

int pollTime(nanoseconds left) {
    constexpr std::chrono::milliseconds kLongest{std::numeric_limits<int>::max()};
    return static_cast<int>(
        std::min(std::chrono::ceil<std::chrono::milliseconds>(left), kLongest).count());
}

/// Gives the shell its commands; subtracts the time that it took from `left`. A text that the pipe takes
/// at once costs nothing of it. False when the shell has not got all of it.
bool feedWithin(nanoseconds& left, ShellInput& commands, int& error) {
    const Clock::time_point start = Clock::now();
    const nanoseconds limit = left;
    for (;;) {
        const ShellInput::Progress progress = commands.feed(error);
        if (progress != ShellInput::Progress::Waiting)
            return progress == ShellInput::Progress::Done;
        if (left.count() <= 0)
            return false;
        pollfd event{commands.pipe(), POLLOUT, 0};
        ::poll(&event, 1, pollTime(left));
        left = limit - (Clock::now() - start);
    }
}

ShellResult killAndCollect(pid_t pid) {
    if (::kill(pid, SIGKILL) != 0)
        return {ShellOutcome::KillFailed, 0, errno};
    // What it has started is in its group, unless it went out of it: all that is known here.
    ::kill(-pid, SIGKILL);
    int status = 0;
    if (limitNextWait(kPatienceAfterKill))
        ::waitpid(pid, &status, WEXITED);
    return {ShellOutcome::Killed, status, 0};
}

} // namespace

int Shell::start(int input, int output, int errorOutput) {
    collectEndedChildren(); // also of shells that were left alone
    const int descriptors[] = {input, output, errorOutput};
    inheritance differences{};
    differences.flags = SPAWN_SETGROUP | SPAWN_SETSIGMASK | SPAWN_SETSIGDEF;
    differences.pgroup = SPAWN_NEWPGROUP;
    sigemptyset(&differences.sigmask);
    sigfillset(&differences.sigdefault);
    char name[] = "sh";
    char readStandardInput[] = "-s";
    char* const arguments[] = {name, readStandardInput, nullptr};
    // Without an environment of its own it gets the daemon's.
    m_pid = ::spawn("/bin/sh", 3, descriptors, &differences, arguments, nullptr);
    return m_pid == -1 ? errno : 0;
}

ShellResult Shell::feedAndWait(Descriptor input, std::string_view text, nanoseconds limit) const {
    ShellInput commands(std::move(input), text);
    nanoseconds left = limit;
    int failure = 0;
    if (!feedWithin(left, commands, failure)) {
        // The end of its input would have it run the part that it has got.
        killAndCollect(m_pid);
        return failure == 0 ? ShellResult{ShellOutcome::WaitFailed, 0, ETIMEDOUT}
                            : ShellResult{ShellOutcome::FeedFailed, 0, failure};
    }
    if (left.count() <= 0)
        return {ShellOutcome::WaitFailed, 0, ETIMEDOUT};
    if (!limitNextWait(left))
        return {ShellOutcome::WaitFailed, 0, errno};
    int status = 0;
    if (::waitpid(m_pid, &status, WEXITED) != -1)
        return {ShellOutcome::Ended, status, 0};
    // Only an interrupted wait ends the shell. One that ran out of time leaves it alone.
    if (errno != EINTR)
        return {ShellOutcome::WaitFailed, 0, errno};
    return killAndCollect(m_pid);
}

} // namespace System
