#pragma once

#include <sys/types.h>

namespace Measuring {

/// The processor time that all threads of a process have used so far, in microseconds.
double processorTimeOf(pid_t pid);

} // namespace Measuring
