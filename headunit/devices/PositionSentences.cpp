#include "devices/PositionSentences.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace headunit {
namespace {

constexpr double kHighestLatitude = 90;
constexpr double kHighestLongitude = 180;
constexpr long kStepsOfAMinute = 10000; // the resolution of a sentence
constexpr long kStepsOfADegree = 60 * kStepsOfAMinute;
constexpr std::size_t kLongestPart = 64;

/// Degrees and minutes as "DDMM.MMMM,H", with as many digits for the degrees as `width`. The rounding
/// comes first, or 59.99999 minutes would show as 60.
std::string coordinate(double degrees, int width, const char* hemispheres) {
    const long steps = std::lround(std::fabs(degrees) * static_cast<double>(kStepsOfADegree));
    std::array<char, kLongestPart> text;
    std::snprintf(text.data(), text.size(), "%0*ld%02ld.%04ld,%c", width, steps / kStepsOfADegree,
                  steps % kStepsOfADegree / kStepsOfAMinute, steps % kStepsOfAMinute,
                  std::signbit(degrees) && steps != 0 ? hemispheres[1] : hemispheres[0]);
    return text.data();
}

std::string formatted(const std::tm& time, const char* format) {
    std::array<char, kLongestPart> text;
    std::strftime(text.data(), text.size(), format, &time);
    return text.data();
}

/// The sentence with this content, which stands between the dollar sign and the asterisk.
std::string sentence(const std::string& content) {
    unsigned sum = 0;
    for (const char character : content)
        sum ^= static_cast<unsigned char>(character);
    std::array<char, kLongestPart> end;
    std::snprintf(end.data(), end.size(), "*%02X\r\n", sum);
    return "$" + content + end.data();
}

} // namespace

bool isOnEarth(const Position& position) {
    return std::fabs(position.latitude) <= kHighestLatitude &&
           std::fabs(position.longitude) <= kHighestLongitude;
}

std::string positionSentences(const Position& position, std::time_t time) {
    std::tm utc{};
    ::gmtime_r(&time, &utc);
    const std::string clock = formatted(utc, "%H%M%S.00");
    const std::string place =
        coordinate(position.latitude, 2, "NS") + "," + coordinate(position.longitude, 3, "EW");
    // A fix from eight satellites at sea level; no speed, no course.
    return sentence("GPGGA," + clock + "," + place + ",1,08,1.0,0.0,M,0.0,M,,") +
           sentence("GPRMC," + clock + ",A," + place + ",0.0,0.0," + formatted(utc, "%d%m%y") + ",,,A");
}

} // namespace headunit
