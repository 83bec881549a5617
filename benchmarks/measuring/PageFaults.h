#pragma once

#include <sys/types.h>

namespace Measuring {

/// How many pages all threads of a process have had the kernel provide so far, without reading a disk.
double pageFaultsOf(pid_t pid);

} // namespace Measuring
