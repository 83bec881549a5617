#pragma once

#include <sys/types.h>

namespace System {

/// How a "/bin/sh" is started. It always gets default signal handling and no blocked signal.
struct ShellStart {
    char* const* arguments; ///< ends in null

    /// Three descriptors that become 0, 1 and 2; the shell gets no other, leads a session of its own
    /// and, as long as it lives and does not itself give that up, adopts all that loses its parents
    /// among what it starts. Null: it inherits descriptors and session.
    const int* streams = nullptr;
};

/// Starts one, without copying the caller's page tables. Returns 0, or the error number that this failed
/// with; there is no child then.
int startShell(const ShellStart& start, pid_t& pid);

} // namespace System
