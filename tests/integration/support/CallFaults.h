#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "support/FaultPlan.h"

/// Which calls of a daemon go wrong, as the test wants it from moment to moment; none at first. Not with
/// a sanitizer, whose library wants to be the first. Make it before the daemon.
class CallFaults {
public:
    static constexpr std::uint64_t kForEver = std::numeric_limits<std::uint64_t>::max();

    CallFaults();
    ~CallFaults();
    CallFaults(const CallFaults&) = delete;
    CallFaults& operator=(const CallFaults&) = delete;

    /// From now on the `first` call goes wrong, counted from 1, and so do the next, `times` in all.
    void fail(Fault fault, std::uint64_t first, std::uint64_t times);

    /// From now on each so many goes wrong.
    void failEvery(Fault fault, std::uint64_t count);

    /// None goes wrong any more. Returns how many there were since they were told to.
    std::uint64_t stop();

    std::uint64_t calls() const { return m_plan->calls; }

    /// Whether all that are to go wrong have; of those without end, many. False when none are.
    bool areOver() const;

    /// The names of the first that went wrong since they were told to, each behind a blank.
    std::string failedCalls() const;

    const std::string& file() const { return m_file; }

private:
    void plan(Fault fault, std::uint64_t first, std::uint64_t times, std::uint64_t every);

    std::string m_file;
    FaultPlan* m_plan;
};
