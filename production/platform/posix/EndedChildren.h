#pragma once

#include <sys/types.h>

namespace System {

/// Collects every child of the process that has ended. Whoever wants to know how one of them ended has
/// to have waited for it before. Does not block.
void collectEndedChildren();

/// Waits until a child has ended. Its status as `waitpid` gives it, or -1 and errno.
int statusAtEndOf(pid_t child);

} // namespace System
