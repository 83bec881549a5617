#include "support/Delays.h"

#include <algorithm>

namespace {

// What is shorter does not matter here, and would be many.
constexpr std::chrono::milliseconds kShortest{5};

} // namespace

void Delays::addSince(Clock::time_point begin) {
    const Delay delay{begin, Clock::now()};
    if (delay.length() >= kShortest)
        m_delays.push_back(delay);
}

std::chrono::milliseconds Delays::longestBeyond(const Delays& others) const {
    Clock::duration longest{};
    for (const Delay& delay : m_delays)
        longest = std::max(longest, delay.length() - others.longestDuring(delay));
    return std::chrono::duration_cast<std::chrono::milliseconds>(longest);
}

Delays::Clock::duration Delays::longestDuring(const Delay& time) const {
    Clock::duration longest{};
    for (const Delay& delay : m_delays)
        if (delay.overlaps(time))
            longest = std::max(longest, delay.length());
    return longest;
}
