#pragma once

#include <cstdint>
#include <vector>

/// A system call that the kernel refuses to a process and all that it starts, from its start on.
struct KernelRefusal {
    long call;              ///< number of the system call
    int error;              ///< what it fails with
    int argument = -1;      ///< refused only when this argument...
    std::uint32_t bits = 0; ///< ...has one of these bits set
};

/// Puts the refusals into force for the calling process, for good. False and `errno` on failure.
/// Async-signal-safe but for the memory it allocates: for a process that has just one thread.
bool enforce(const std::vector<KernelRefusal>& refusals);
