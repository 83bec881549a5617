#pragma once

#include <sys/types.h>

#include <cstdint>
#include <vector>

namespace System {

/// One line of the process table.
struct Process {
    pid_t pid;
    pid_t parent;
    pid_t group;
    pid_t session;
    std::uint64_t
        startTime; ///< in the kernel's ticks since boot; tells a reused number from the old one
    bool dead;     ///< waits to be collected by its parent
};

/// The processes that can be seen now; empty where "/proc" is not mounted.
std::vector<Process> listProcesses();

/// Knows what a command started, so that it can be ended with everything that it left behind: also what
/// moved to another session or lost its parents. For that the calling process adopts orphans.
class ProcessTree {
public:
    /// Collects children that ended since the last command and notes those that are still there, which
    /// belong to earlier commands. Call it before starting the command.
    ProcessTree();

    /// Kills `root` and all that came from it, repeatedly, until nothing of it runs any more. Returns 0,
    /// or the error number that killing `root` itself failed with.
    int kill(pid_t root) const;

private:
    std::vector<Process> membersOf(pid_t root) const;
    bool belongsToEarlier(const Process& process) const;

    std::vector<Process> m_earlier;
};

} // namespace System
