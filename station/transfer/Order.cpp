#include "transfer/Order.h"

#include <array>
#include <charconv>
#include <string_view>
#include <utility>

#include "client/Failure.h"

namespace station {

namespace {

constexpr std::array<std::pair<std::string_view, unsigned>, 4> kTypes = {
    {{"disk", 177}, {"disc", 178}, {"usb", 179}, {"sd", 180}}};

// What every unit reads as the number it is.
constexpr std::uint64_t kLargestBlock = 0x7FFFFFFF;
constexpr std::string_view kRangeMark = "..";

[[noreturn]] void refuse(const std::string& message) {
    throw Failure(Failure::Kind::InvalidRequest, message);
}

int takeBase(std::string_view& digits) {
    constexpr int kDecimal = 10;
    constexpr int kHexadecimal = 16;
    constexpr int kOctal = 8;
    if (digits.substr(0, 2) == "0x" || digits.substr(0, 2) == "0X") {
        digits.remove_prefix(2);
        return kHexadecimal;
    }
    return digits.size() > 1 && digits.front() == '0' ? kOctal : kDecimal;
}

} // namespace

std::uint64_t parseNumber(const std::string& text, const std::string& what) {
    std::string_view digits = text;
    const int base = takeBase(digits);
    std::uint64_t number = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (error != std::errc() || end != digits.data() + digits.size())
        refuse("invalid " + what + " '" + text +
               "': expected a decimal, hexadecimal (0x10) or octal (010) number");
    return number;
}

unsigned parseDeviceType(const std::string& text) {
    for (const auto& [name, type] : kTypes)
        if (text == name || text == std::to_string(type))
            return type;
    refuse("invalid device type '" + text + "': expected disk (177), disc (178), usb (179) or sd (180)");
}

std::uint64_t parseBlock(const std::string& text) {
    const std::uint64_t block = parseNumber(text, "block number");
    if (block > kLargestBlock)
        refuse("invalid block number '" + text + "': the largest is " + std::to_string(kLargestBlock));
    return block;
}

BlockRange parseBlocks(const std::string& text) {
    const std::size_t mark = text.find(kRangeMark);
    const std::uint64_t first = parseBlock(text.substr(0, mark));
    if (mark == std::string::npos)
        return {first, first};
    const std::uint64_t last = parseBlock(text.substr(mark + kRangeMark.size()));
    if (last < first)
        refuse("invalid blocks '" + text + "': the last one is before the first");
    return {first, last};
}

} // namespace station
