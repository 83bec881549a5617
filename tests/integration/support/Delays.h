#pragma once

#include <chrono>
#include <vector>

/// How long somebody waited for answers, one after the other. For one thread at a time.
class Delays {
public:
    using Clock = std::chrono::steady_clock;

    /// From `begin` to now.
    void addSince(Clock::time_point begin);

    /// The longest, of each what is beyond the longest of the others' that fell into the same time.
    std::chrono::milliseconds longestBeyond(const Delays& others) const;

private:
    struct Delay {
        Clock::time_point begin;
        Clock::time_point end;

        Clock::duration length() const { return end - begin; }
        bool overlaps(const Delay& other) const { return begin < other.end && other.begin < end; }
    };

    Clock::duration longestDuring(const Delay& time) const;

    std::vector<Delay> m_delays;
};
