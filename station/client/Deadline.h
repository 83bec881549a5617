#pragma once

#include <chrono>
#include <string_view>

namespace station {

using Seconds = std::chrono::duration<double>;

/// A time-out as a person writes it: a decimal number of seconds, fractions allowed, more than zero and
/// finite. Anything else throws `Failure` (`InvalidRequest`).
Seconds parseTimeout(std::string_view text);

/// The moment by which an exchange must be complete. One deadline is handed through all of its steps, so
/// that they share one time-out. Immutable: any thread.
class Deadline {
public:
    using Clock = std::chrono::steady_clock;

    static Deadline after(Seconds timeout);
    static Deadline earlier(const Deadline& one, const Deadline& other);

    Clock::time_point time() const { return m_time; }
    bool expired() const { return Clock::now() >= m_time; }

    /// What is left, in milliseconds rounded up, as poll() takes it; 0 once expired. Cut to what an int
    /// holds: look at `expired()` before calling poll()'s 0 a time-out.
    int pollMilliseconds() const;

private:
    explicit Deadline(Clock::time_point time) : m_time(time) {}

    Clock::time_point m_time;
};

} // namespace station
