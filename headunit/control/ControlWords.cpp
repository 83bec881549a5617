#include "control/ControlWords.h"

#include <charconv>
#include <cstdlib>

namespace headunit {
namespace {

constexpr int kLongestLate = 600000; // milliseconds
constexpr int kMostTimes = 1000000;
constexpr int kHexBase = 16;
constexpr unsigned kBitsOfDigit = 4;
constexpr unsigned kDigitMask = 0xF;
constexpr char kHexDigits[] = "0123456789ABCDEF";

std::optional<int> numberOfBase(const char* begin, const char* end, int base) {
    int number = 0;
    const auto [stopped, error] = std::from_chars(begin, end, number, base);
    if (error != std::errc() || stopped != end)
        return std::nullopt;
    return number;
}

} // namespace

ControlCommands::Answer refused(const std::string& why) {
    return {false, why};
}

ControlCommands::Answer refusedValue(const std::string& value, const std::string& wanted) {
    return refused("'" + value + "' is not " + wanted);
}

std::optional<int> wholeNumber(const std::string& text) {
    constexpr int kDecimal = 10;
    return numberOfBase(text.data(), text.data() + text.size(), kDecimal);
}

std::optional<double> decimalNumber(const std::string& text) {
    if (text.empty() || text.find_first_not_of("+-.0123456789") != std::string::npos)
        return std::nullopt; // nothing that strtod takes beyond decimals
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (end != text.c_str() + text.size())
        return std::nullopt;
    return number;
}

std::optional<bool> onOrOff(const std::string& text) {
    if (text != "on" && text != "off")
        return std::nullopt;
    return text == "on";
}

std::optional<std::chrono::milliseconds> lateness(const std::string& text) {
    const auto late = wholeNumber(text);
    if (!late || *late < 0 || *late > kLongestLate)
        return std::nullopt;
    return std::chrono::milliseconds(*late);
}

ControlCommands::Answer refusedLateness(const std::string& text) {
    return refusedValue(text, "a number of milliseconds: 0 to " + std::to_string(kLongestLate));
}

std::optional<unsigned> orderedTimes(const std::string& text) {
    const auto times = wholeNumber(text);
    if (!times || *times < 0 || *times > kMostTimes)
        return std::nullopt;
    return static_cast<unsigned>(*times);
}

std::optional<unsigned> timesIn(const std::vector<std::string>& words) {
    return words.size() > 1 ? orderedTimes(words[1]) : std::optional<unsigned>(1U);
}

ControlCommands::Answer refusedTimes(const std::string& text, const std::string& things) {
    return refusedValue(text, "a number of " + things + ": 0 to " + std::to_string(kMostTimes));
}

std::optional<std::string> hexBytes(const std::string& text) {
    if (text.empty() || text.size() % 2 != 0)
        return std::nullopt;
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); at += 2) {
        const auto byte = numberOfBase(text.data() + at, text.data() + at + 2, kHexBase);
        if (!byte || *byte < 0 || text[at] == '-')
            return std::nullopt;
        bytes += static_cast<char>(*byte);
    }
    return bytes;
}

std::string hexText(std::uint8_t byte) {
    return {kHexDigits[byte >> kBitsOfDigit], kHexDigits[byte & kDigitMask]};
}

} // namespace headunit
