#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "support/FaultPlan.h"

/// Which allocations of a daemon fail, as the test wants it from moment to moment; none at first. Not
/// with a sanitizer, whose library wants to be the first. Make it before the daemon.
class AllocationFaults {
public:
    static constexpr std::uint64_t kForEver = std::numeric_limits<std::uint64_t>::max();

    AllocationFaults();
    ~AllocationFaults();
    AllocationFaults(const AllocationFaults&) = delete;
    AllocationFaults& operator=(const AllocationFaults&) = delete;

    /// From now on the `first` allocation fails, counted from 1, and so do the next, `times` in all.
    void fail(std::uint64_t first, std::uint64_t times);

    /// None fails any more. Returns how many there were since they were told to fail.
    std::uint64_t stop();

    std::uint64_t calls() const { return m_plan->calls; }

    const std::string& file() const { return m_file; }

private:
    std::string m_file;
    FaultPlan* m_plan;
};
