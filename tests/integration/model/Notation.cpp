#include "model/Notation.h"

#include "support/Lines.h"

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

std::string bigEndian16(std::uint32_t number) {
    return {asByte(number >> 8), asByte(number)};
}

std::string bigEndian32(std::uint32_t number) {
    return bigEndian16(number >> 16) + bigEndian16(number);
}

char asByte(std::uint32_t number) {
    return static_cast<char>(static_cast<unsigned char>(number));
}
