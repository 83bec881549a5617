#pragma once

#include <atomic>
#include <cstdint>

/// What a test and the library that it has loaded into a daemon share, in a file that both map.
struct FaultPlan {
    std::atomic<std::int32_t> owner; ///< the daemon; programs that it starts are left alone
    std::atomic<std::uint64_t>
        first; ///< the number, from 1, of the first allocation to fail; 0 for none
    std::atomic<std::uint64_t> times; ///< so many fail from there on
    std::atomic<std::uint64_t> calls; ///< allocations since `first` was set
};

constexpr char kFaultPlanVariable[] = "FAILING_ALLOCATIONS";
