#include "client/Deadline.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "client/Failure.h"

namespace station {

namespace {
// Longer than any test, and far from the end of the clock's range.
constexpr Seconds kLongestTimeout = std::chrono::hours(24 * 365);
} // namespace

Seconds parseTimeout(std::string_view text) {
    double seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    if (!isNumber || !std::isfinite(seconds) || seconds <= 0)
        throw Failure(Failure::Kind::InvalidRequest, "invalid time-out '" + std::string(text) +
                                                         "': expected a number of seconds above 0");
    return Seconds(seconds);
}

Deadline Deadline::after(Seconds timeout) {
    const Seconds bounded = std::min(timeout, kLongestTimeout);
    return Deadline(Clock::now() + std::chrono::duration_cast<Clock::duration>(bounded));
}

Deadline Deadline::earlier(const Deadline& one, const Deadline& other) {
    return Deadline(std::min(one.m_time, other.m_time));
}

int Deadline::pollMilliseconds() const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_time - Clock::now()).count();
    constexpr decltype(left) kLongest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, kLongest));
}

} // namespace station
