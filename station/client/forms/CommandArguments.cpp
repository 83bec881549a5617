#include "client/forms/CommandArguments.h"

#include <charconv>
#include <limits>

#include "client/Quoting.h"
#include "client/forms/Refusal.h"

namespace station {

namespace {

constexpr int kDecimal = 10;
constexpr int kHexadecimal = 16;
constexpr int kOctal = 8;

// A unit keeps room for whole groups of base64 characters, and what the padding leaves of it is zero.
constexpr std::size_t kBase64Group = 3;

std::string tokenOf(const std::string& argument) {
    // It refuses what no line can carry.
    quoteArgument(argument);
    if (!isEncodedArgument(argument))
        return argument + '\0';
    std::string bytes = argumentBytes(argument);
    if (isBase64Argument(argument))
        bytes.resize((bytes.size() + kBase64Group - 1) / kBase64Group * kBase64Group);
    return bytes;
}

} // namespace

std::optional<std::uint32_t> parseNumber(std::string_view text) {
    int base = kDecimal;
    if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") {
        base = kHexadecimal;
        text.remove_prefix(2);
    } else if (text.size() > 1 && text.front() == '0') {
        base = kOctal;
    }
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

CommandArguments::CommandArguments(const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments)
        m_tokens.push_back(tokenOf(argument));
}

std::string_view CommandArguments::text(std::size_t at) const {
    const std::string_view token = m_tokens[at];
    return token.substr(0, token.find('\0'));
}

bool CommandArguments::beginsWith(std::size_t at, std::string_view word) const {
    return m_tokens[at].compare(0, word.size(), word) == 0;
}

std::uint8_t CommandArguments::byte(std::size_t at, const char* what) const {
    return static_cast<std::uint8_t>(number(at, what, std::numeric_limits<std::uint8_t>::max()));
}

std::uint32_t CommandArguments::word(std::size_t at, const char* what) const {
    return number(at, what, std::numeric_limits<std::uint32_t>::max());
}

std::uint32_t CommandArguments::number(std::size_t at, const char* what, std::uint32_t most) const {
    const auto number = parseNumber(text(at));
    if (!number || *number > most)
        refuseForm(std::string(what) + " has to be a number from 0 to " + std::to_string(most) +
                   " in a binary request, such as 16, 0x10 or 020, and not '" + std::string(text(at)) +
                   "'");
    return *number;
}

} // namespace station
