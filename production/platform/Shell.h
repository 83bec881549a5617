#pragma once

#include <sys/types.h>

#include <chrono>
#include <string_view>

#include "wire/Descriptor.h"

namespace System {

enum class ShellOutcome {
    Ended,      ///< `status` holds the wait status
    Killed,     ///< outlived its limit; it and everything it started were killed
    KillFailed, ///< outlived its limit and could not be killed; `error` tells why
    FeedFailed, ///< could not be given its text, for the reason in `error`, and was killed
    WaitFailed  ///< `error` tells why (ETIMEDOUT: it outlived its limit); the shell was left alone
};

struct ShellResult {
    ShellOutcome outcome;
    int status; ///< as `waitpid` gives it
    int error;  ///< an errno
};

/// One "/bin/sh -s" that reads its commands from a descriptor. At most one at a time per process, always
/// from the same thread, and no other thread of the process may wait for children.
///
/// The shell gets the three given descriptors as 0, 1 and 2 and nothing else, default signal handling
/// and a session of its own, or a process group where a new process cannot have a session. It is started
/// without copying the caller's page tables. It never runs a text of which it got only the beginning.
///
/// Whether a shell that outlives its limit is killed or left alone is the system's way. What a shell
/// that has ended left running belongs to the system's first process, which collects it in its time.
class Shell {
public:
    /// Returns 0, or the error number that starting failed with.
    int start(int input, int output, int errorOutput);

    pid_t pid() const { return m_pid; }

    /// Feeds `text` into `input`, the write end of the pipe that the shell reads from, closes it, and
    /// waits for the shell to end. Returns when `limit` has passed, whatever the shell does: shortly
    /// after it when processes have to be killed. What a shell that ended in time left running stays
    /// alive. The calling process must ignore SIGPIPE.
    ShellResult feedAndWait(Descriptor input, std::string_view text,
                            std::chrono::nanoseconds limit) const;

private:
    pid_t m_pid = -1;
};

} // namespace System
