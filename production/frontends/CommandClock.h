#pragma once

#include <atomic>
#include <cstdint>

/// Tells how long a front end's command has been running. Any thread.
class CommandClock {
public:
    static constexpr std::uint64_t kLongRuntimeMs = 7500;

    /// A command starts now.
    void start() { m_start = now(); }
    /// No command is running: what is sent meanwhile counts from the monotonic clock's own start.
    void reset() { m_start = 0; }

    /// 0 when the clock cannot be read.
    std::uint64_t elapsedMs() const;

    /// True when a command has been running for longer than `kLongRuntimeMs`.
    bool isLong() const { return elapsedMs() > kLongRuntimeMs; }

    /// Warns on standard error when `command` has been running for longer than `kLongRuntimeMs`.
    void warnIfLong(const char* command) const;

private:
    /// The monotonic clock, rounded to the nearest millisecond; 0 when it cannot be read.
    static std::uint64_t now();

    std::atomic<std::uint64_t> m_start{0};
};
