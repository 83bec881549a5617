#include "client/Hex.h"

namespace station {

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";
constexpr unsigned kLowHalf = 0x0F;
constexpr unsigned kBitsPerDigit = 4;

void append(std::string& text, char byte) {
    const auto value = static_cast<unsigned char>(byte);
    text += kDigits[value >> kBitsPerDigit];
    text += kDigits[value & kLowHalf];
}

} // namespace

std::string hexDigits(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes)
        append(text, byte);
    return text;
}

std::string hexArgument(std::string_view bytes) {
    std::string text = "hex(";
    for (const char byte : bytes) {
        if (text.back() != '(')
            text += ' ';
        append(text, byte);
    }
    return text + ')';
}

} // namespace station
