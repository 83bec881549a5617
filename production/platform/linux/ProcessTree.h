#pragma once

#include <sys/types.h>

#include <vector>

namespace System {

/// One line of the process table.
struct Process {
    pid_t pid;
    pid_t parent;
    pid_t group;
    pid_t session;
    bool dead; ///< waits to be collected by its parent
};

/// The processes that can be seen now; empty where "/proc" is not mounted.
std::vector<Process> listProcesses();

/// Kills all that came from `root`, also what moved to another session or lost its parents, repeatedly
/// until nothing of it runs any more, and `root` last: as long as it lives, it has to adopt its orphans.
/// `root` has to be stopped. Returns 0, or the error number that killing `root` itself failed with.
int killProcessTree(pid_t root);

} // namespace System
