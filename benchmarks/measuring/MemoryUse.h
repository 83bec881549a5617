#pragma once

#include <sys/types.h>

namespace Measuring {

/// What a process occupies at one moment; sizes in KiB.
struct MemoryUse {
    double resident;
    double residentPeak;
    /// Resident memory in which a page shared by n processes counts as 1/n.
    double proportional;
    /// Resident memory that no other process shares.
    double exclusive;
};

MemoryUse memoryUseOf(pid_t pid);

int threadsOf(pid_t pid);

/// The same once the resident memory has stopped changing; throws when it does not.
MemoryUse settledMemoryUseOf(pid_t pid);

} // namespace Measuring
