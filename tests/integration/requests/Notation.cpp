#include "requests/Notation.h"

#include <array>
#include <cstdio>

#include "support/Lines.h"

namespace {

std::string formatted(const char* format, std::uint32_t number) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), format, number);
    return text.data();
}

} // namespace

std::string hexDigits(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string digits;
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        digits += kDigits[number >> 4];
        digits += kDigits[number & 0x0F];
    }
    return digits;
}

std::string hexText(std::string_view bytes) {
    return "hex(" + hexDigits(bytes) + ")";
}

std::string base64Text(std::string_view bytes) {
    return "base64(" + base64(bytes) + ")";
}

std::string anyNumber(Dice& dice, std::uint32_t number) {
    // A number beyond the signed ones has no decimal form.
    constexpr std::uint32_t kLargestSigned = 0x7FFFFFFF;
    if (number > kLargestSigned || dice.oneIn(4))
        return formatted("0x%X", number);
    return formatted(dice.oneIn(8) ? "0%o" : "%u", number);
}

std::string anyData(Dice& dice, std::string_view bytes) {
    return dice.oneIn(4) ? base64Text(bytes) : hexText(bytes);
}

std::string bigEndian16(std::uint32_t number) {
    return {asByte(number >> 8), asByte(number)};
}

std::string bigEndian32(std::uint32_t number) {
    return bigEndian16(number >> 16) + bigEndian16(number);
}

char asByte(std::uint32_t number) {
    return static_cast<char>(static_cast<unsigned char>(number));
}
