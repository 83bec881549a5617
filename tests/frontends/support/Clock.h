#pragma once

#include <cstdint>

/// Stands in for the monotonic clock that the code under test reads. One thread.
class Clock {
public:
    Clock();
    ~Clock();
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;

    /// What the clock shows from now on.
    void set(std::int64_t seconds, std::int64_t nanoseconds);
    void setMs(std::int64_t milliseconds) { set(milliseconds / 1000, milliseconds % 1000 * 1000000); }
    /// It cannot be read from now on.
    void breakDown();
};
