#pragma once

#include <chrono>

namespace station {

/// The time since it was made.
class Stopwatch {
public:
    double milliseconds() const {
        const auto elapsed = std::chrono::steady_clock::now() - m_start;
        return std::chrono::duration<double, std::milli>(elapsed).count();
    }
    double seconds() const { return milliseconds() / 1000; }

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace station
