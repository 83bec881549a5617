#include "model/Words.h"

#include <algorithm>
#include <cctype>
#include <limits>

namespace {

using Limits = std::numeric_limits<std::int32_t>;

int digitOf(char character) {
    if (character >= '0' && character <= '9')
        return character - '0';
    const int letter = std::tolower(static_cast<unsigned char>(character));
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : 16;
}

/// The digits of one base at the beginning; more than anybody counts come out as very many.
std::int64_t digits(std::string_view text, int base) {
    constexpr std::int64_t kEnough = std::int64_t{1} << 40;
    std::int64_t number = 0;
    for (const char character : text) {
        if (digitOf(character) >= base)
            break;
        number = std::min(number * base + digitOf(character), kEnough);
    }
    return number;
}

} // namespace

Words::Words(const std::vector<Word>& words) {
    for (const Word& word : words)
        m_values.push_back(word.value());
}

std::string Words::text(std::size_t at) const {
    return m_values[at].substr(0, m_values[at].find('\0'));
}

bool Words::begins(std::size_t at, std::string_view with) const {
    return text(at).compare(0, with.size(), with) == 0;
}

std::int64_t Words::wide(std::size_t at) const {
    const std::string whole = text(at);
    std::string_view rest = whole;
    while (!rest.empty() && std::isspace(static_cast<unsigned char>(rest.front())) != 0)
        rest.remove_prefix(1);
    const bool isNegative = !rest.empty() && rest.front() == '-';
    if (isNegative || (!rest.empty() && rest.front() == '+'))
        rest.remove_prefix(1);
    int base = 10;
    if (!rest.empty() && rest.front() == '0')
        base = rest.size() > 1 && std::tolower(static_cast<unsigned char>(rest[1])) == 'x' ? 16 : 8;
    if (base == 16)
        rest.remove_prefix(2);
    const std::int64_t number = digits(rest, base);
    return isNegative ? -number : number;
}

std::int32_t Words::number(std::size_t at) const {
    const std::int64_t number = wide(at);
    if (number < Limits::min())
        return Limits::min();
    if (number > std::numeric_limits<std::uint32_t>::max())
        return Limits::max();
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

std::uint32_t byteAt(const std::string& frame, std::size_t at) {
    return static_cast<unsigned char>(frame.at(at));
}

std::uint32_t numberAt(const std::string& frame, std::size_t at) {
    return byteAt(frame, at) << 24 | byteAt(frame, at + 1) << 16 | byteAt(frame, at + 2) << 8 |
           byteAt(frame, at + 3);
}
