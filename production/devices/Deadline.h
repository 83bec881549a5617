#pragma once

#include <algorithm>
#include <chrono>
#include <limits>
#include <optional>

/// A point in time until which `poll` is to wait, or none.
class Deadline {
public:
    using Milliseconds = std::chrono::milliseconds;

    /// 0 for none.
    explicit Deadline(unsigned milliseconds) {
        if (milliseconds != 0)
            m_end = Clock::now() + Milliseconds(milliseconds);
    }

    bool hasPassed() const { return m_end && Clock::now() >= *m_end; }

    /// For `poll`: what is left in milliseconds, rounded up; -1 for no limit.
    int pollLimit() const {
        if (!m_end)
            return -1;
        constexpr Milliseconds kLongest(std::numeric_limits<int>::max());
        const auto left = std::chrono::ceil<Milliseconds>(*m_end - Clock::now());
        return static_cast<int>(std::clamp(left, Milliseconds(0), kLongest).count());
    }

private:
    using Clock = std::chrono::steady_clock;

    std::optional<Clock::time_point> m_end;
};
