#include "frontends/Base64Quads.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPadding = '=';
constexpr std::size_t kCharacters = 4; // of a quad
constexpr std::size_t kBytes = 3;
constexpr std::uint32_t kNone = 0xFF000000; // beside the bits of a quad

using Values = std::array<std::uint32_t, 256>;

constexpr Values makeValues() {
    Values values{};
    for (std::uint32_t& value : values)
        value = kNone;
    for (std::size_t at = 0; at < kAlphabet.size(); ++at)
        values[static_cast<unsigned char>(kAlphabet[at])] = static_cast<std::uint32_t>(at);
    return values;
}

constexpr Values kValues = makeValues();

std::uint32_t valueOf(char character) {
    return kValues[static_cast<unsigned char>(character)];
}

bool isQuad(const char* text) {
    return (valueOf(text[0]) | valueOf(text[1]) | valueOf(text[2]) | valueOf(text[3])) < kNone;
}

} // namespace

std::size_t base64RunLength(const char* text, std::size_t length) {
    std::size_t at = 0;
    while (length - at >= kCharacters && isQuad(text + at))
        at += kCharacters;
    while (at < length && (valueOf(text[at]) != kNone || text[at] == kPadding))
        ++at;
    return at;
}

std::size_t decodeBase64Quads(const char* text, std::size_t length, unsigned char* bytes) {
    std::size_t quads = 0;
    for (; length >= kCharacters; length -= kCharacters, text += kCharacters, bytes += kBytes, ++quads) {
        const std::uint32_t first = valueOf(text[0]);
        const std::uint32_t second = valueOf(text[1]);
        const std::uint32_t third = valueOf(text[2]);
        const std::uint32_t fourth = valueOf(text[3]);
        if (((first | second | third | fourth) & kNone) != 0)
            break;
        const std::uint32_t bits = first << 18 | second << 12 | third << 6 | fourth;
        bytes[0] = static_cast<unsigned char>(bits >> 16);
        bytes[1] = static_cast<unsigned char>(bits >> 8);
        bytes[2] = static_cast<unsigned char>(bits);
    }
    return quads;
}
