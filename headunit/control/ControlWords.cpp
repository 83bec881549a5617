#include "control/ControlWords.h"

#include <charconv>
#include <cstdlib>

namespace headunit {
namespace {

constexpr int kLongestLate = 600000; // milliseconds
constexpr int kMostTimes = 1000000;
constexpr int kHexBase = 16;

constexpr char kNoSwitch[] = "'%s' is not on or off";
constexpr char kNoLateness[] = "'%s' is not a number of milliseconds: 0 to %d";
constexpr char kNoResult[] = "'%s' is not a result: a whole number of 32 bits";
constexpr char kNoTimes[] = "'%s' is not a number of %s: 0 to %d";

std::optional<int> numberOfBase(const char* begin, const char* end, int base) {
    int number = 0;
    const auto [stopped, error] = std::from_chars(begin, end, number, base);
    if (error != std::errc() || stopped != end)
        return std::nullopt;
    return number;
}

} // namespace

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

bool onOrOff(const std::string& text) {
    if (text != "on" && text != "off")
        throw unitError(kNoSwitch, text.c_str());
    return text == "on";
}

std::chrono::milliseconds lateness(const std::string& text) {
    const auto late = wholeNumber(text);
    if (!late || *late < 0 || *late > kLongestLate)
        throw unitError(kNoLateness, text.c_str(), kLongestLate);
    return std::chrono::milliseconds(*late);
}

int managerResult(const std::string& text) {
    const auto result = wholeNumber(text);
    if (!result)
        throw unitError(kNoResult, text.c_str());
    return *result;
}

unsigned timesIn(const ControlArguments& arguments, const char* things) {
    if (arguments.size() < 2)
        return 1;
    const std::string& text = arguments[1];
    const auto times = wholeNumber(text);
    if (!times || *times < 0 || *times > kMostTimes)
        throw unitError(kNoTimes, text.c_str(), things, kMostTimes);
    return static_cast<unsigned>(*times);
}

} // namespace headunit
