#pragma once

#include <array>
#include <atomic>
#include <cstdint>

/// What can go wrong with a call of a daemon into the system's library. Each counts the calls that can
/// go wrong in this way, and no others.
enum class Fault : std::int32_t {
    NoMemory,     ///< an allocation fails
    Error,        ///< a system call fails with an error that it is known for
    OtherError,   ///< the same with another one
    Interruption, ///< one that a signal may interrupt and that may be repeated does nothing: EINTR
    NotReady,     ///< one that does not wait does nothing: EAGAIN
    HalfRead,     ///< half of what is there is read
    HalfWrite,    ///< half of what is given is written
};

/// What a test and the library that it has loaded into a daemon share, in a file that both map.
struct FaultPlan {
    std::atomic<std::int32_t> owner; ///< the daemon; programs that it starts are left alone
    std::atomic<Fault> fault;
    std::atomic<std::uint64_t> first; ///< the number, from 1, of the first call to fail; 0 for none
    std::atomic<std::uint64_t> times; ///< so many fail from there on
    std::atomic<std::uint64_t> every; ///< of those only each so many
    std::atomic<std::uint64_t> calls; ///< those that could have failed since `first` was set
    std::atomic<std::uint64_t> failedSize;
    std::array<std::atomic<char>, 512> failed; ///< the names of those that did, each behind a blank
};

constexpr char kFaultPlanVariable[] = "FAILING_CALLS";
