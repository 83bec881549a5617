#include "core/TokenNumber.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "core/TokenText.h"

namespace {

/// What the digits are written in. Found here, since some C libraries know 0b as well.
int baseOf(const char* digits) {
    if (digits[0] != '0')
        return 10;
    return digits[1] == 'x' || digits[1] == 'X' ? 16 : 8;
}

} // namespace

std::int64_t tokenNumber(const std::vector<char>& token) {
    // What a scan for "%i" gives, without its cost. Copied,
    // since decoded tokens have no terminating zero.
    const std::string text = tokenText(token);
    const char* digits = text.c_str() + std::strspn(text.c_str(), " \t\n\v\f\r");
    if (*digits == '+' || *digits == '-')
        ++digits;
    return std::strtoll(text.c_str(), nullptr, baseOf(digits));
}

std::optional<std::uint32_t> tokenNumberUpTo(const std::vector<char>& token, std::uint32_t highest) {
    const std::int64_t number = tokenNumber(token);
    if (number < 0 || number > highest)
        return std::nullopt;
    return static_cast<std::uint32_t>(number);
}
