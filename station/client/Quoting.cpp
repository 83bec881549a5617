#include "client/Quoting.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "client/Failure.h"
#include "wire/Base64.h"

namespace station {

namespace {

constexpr std::string_view kHexOpening = "hex(";
constexpr std::string_view kBase64Opening = "base64(";

// The unit reads this many characters of a run of hex digits and blanks and drops the rest in silence.
constexpr std::size_t kLongestHexText = 2048;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool isWordCharacter(char c) {
    return isLetter(c) || isDigit(c) || c == '_';
}
bool isHexCharacter(char c) {
    return isDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f') || c == ' ';
}
bool isBase64Character(char c) {
    return isLetter(c) || isDigit(c) || c == '+' || c == '/' || c == '=';
}

/// Which characters a test holds for, once and for all: uploads pass megabytes through it.
class CharacterSet {
public:
    explicit CharacterSet(bool (*isMember)(char)) {
        for (std::size_t code = 0; code < m_isMember.size(); ++code)
            m_isMember[code] = isMember(static_cast<char>(code));
    }

    bool holdsAllOf(std::string_view text) const {
        bool all = true;
        for (const char c : text)
            all &= m_isMember[static_cast<unsigned char>(c)];
        return all;
    }

private:
    std::array<bool, 256> m_isMember{};
};
bool isControlCharacter(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

template <typename Predicate>
bool consistsOf(std::string_view text, Predicate predicate) {
    return std::all_of(text.begin(), text.end(), predicate);
}

bool beginsWith(std::string_view text, std::string_view opening) {
    return text.substr(0, opening.size()) == opening;
}

[[noreturn]] void refuse(const std::string& message) {
    throw Failure(Failure::Kind::InvalidRequest, message);
}

std::string quotedForMessage(std::string_view argument) {
    return "'" + std::string(argument) + "'";
}

/// What stands between `opening` and the closing parenthesis.
std::string_view encodedBytes(std::string_view argument, std::string_view opening) {
    if (argument.back() != ')')
        refuse("argument " + quotedForMessage(argument) + " begins with " + std::string(opening) +
               " but does not end with ); to send this very text, encode it as base64(...)");
    const std::string_view bytes = argument.substr(opening.size(), argument.size() - opening.size() - 1);
    if (bytes.empty())
        refuse("argument " + quotedForMessage(argument) +
               " is empty, and the unit drops empty arguments");
    return bytes;
}

void checkHex(std::string_view argument) {
    const std::string_view digits = encodedBytes(argument, kHexOpening);
    if (!consistsOf(digits, isHexCharacter))
        refuse("argument " + quotedForMessage(argument) +
               " may hold only hex digits and blanks between the parentheses; to send this very text, "
               "encode it as base64(...)");
    if (digits.size() > kLongestHexText)
        refuse("a hex(...) argument holds " + std::to_string(digits.size()) +
               " characters, and the unit drops what follows the first " +
               std::to_string(kLongestHexText) + "; send the bytes as base64(...)");
}

bool isBase64Text(std::string_view text) {
    static const CharacterSet characters(isBase64Character);
    return characters.holdsAllOf(text);
}

void checkBase64(std::string_view argument) {
    if (!isBase64Text(encodedBytes(argument, kBase64Opening)))
        refuse("argument " + quotedForMessage(argument) +
               " may hold only A-Z a-z 0-9 + / = between the parentheses; to send this very text, "
               "encode it as base64(...)");
}

/// What a transfer consists of, and so not looked at more often than needed.
bool isSoundBase64(std::string_view argument) {
    return beginsWith(argument, kBase64Opening) && argument.size() > kBase64Opening.size() + 1 &&
           argument.back() == ')' && isBase64Text(encodedBytes(argument, kBase64Opening));
}

void checkControlCharacters(std::string_view argument) {
    const auto control = std::find_if(argument.begin(), argument.end(), isControlCharacter);
    if (control == argument.end())
        return;
    char text[sizeof "0x00"];
    std::snprintf(text, sizeof text, "0x%02X", static_cast<unsigned>(*control) & 0xFFU);
    refuse("an argument holds the control character " + std::string(text) + " as its byte " +
           std::to_string(control - argument.begin() + 1) +
           ", which cannot be quoted; send its bytes as base64(...)");
}

void checkQuotable(std::string_view argument) {
    if (argument.empty())
        refuse("an empty argument cannot be sent: the unit drops it");
    // First, so that no message repeats one.
    checkControlCharacters(argument);
    if (argument.find('"') != std::string_view::npos)
        refuse("argument " + quotedForMessage(argument) +
               " holds a double quotation mark, which cannot be quoted; send its bytes as base64(...)");
}

unsigned valueOf(char hexDigit) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    constexpr char kToLower = 0x20; // leaves a decimal digit as it is
    return static_cast<unsigned>(kDigits.find(static_cast<char>(hexDigit | kToLower)));
}

std::string decodeHex(std::string_view argument) {
    checkHex(argument);
    std::string digits(encodedBytes(argument, kHexOpening));
    digits.erase(std::remove(digits.begin(), digits.end(), ' '), digits.end());
    if (digits.size() % 2 != 0)
        refuse("argument " + quotedForMessage(argument) + " holds an unpaired hex digit");
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes += static_cast<char>(valueOf(digits[i]) << 4 | valueOf(digits[i + 1]));
    return bytes;
}

std::string decodeBase64(std::string_view argument) {
    checkBase64(argument);
    const std::string text(encodedBytes(argument, kBase64Opening));
    std::vector<unsigned char> bytes(text.size());
    const int size = System::decodeBase64(text.c_str(), bytes.data(), bytes.size());
    if (size < 0)
        refuse("argument " + quotedForMessage(argument) + " is not valid base64");
    return std::string(bytes.begin(), bytes.begin() + size);
}

/// False for an argument that is to be quoted. Throws for one that cannot travel.
bool travelsAsItIs(std::string_view argument) {
    const bool isWord = !argument.empty() && consistsOf(argument, isWordCharacter);
    if (isWord || isSoundBase64(argument))
        return true;
    // Before the encoded forms, so that no message repeats a control character.
    checkQuotable(argument);
    const bool isHex = beginsWith(argument, kHexOpening);
    if (isHex)
        checkHex(argument);
    const bool isBase64 = beginsWith(argument, kBase64Opening);
    if (isBase64)
        checkBase64(argument);
    return isHex || isBase64;
}

} // namespace

bool isEncodedArgument(std::string_view argument) {
    return beginsWith(argument, kHexOpening) || isBase64Argument(argument);
}

bool isBase64Argument(std::string_view argument) {
    return beginsWith(argument, kBase64Opening);
}

std::string base64Argument(std::string_view bytes) {
    const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data());
    std::string argument = System::encodeBase64(first, bytes.size());
    argument.reserve(kBase64Opening.size() + argument.size() + 1);
    return argument.insert(0, kBase64Opening).append(1, ')');
}

std::string argumentBytes(std::string_view argument) {
    if (beginsWith(argument, kHexOpening))
        return decodeHex(argument);
    if (beginsWith(argument, kBase64Opening))
        return decodeBase64(argument);
    return std::string(argument);
}

std::string quoteArgument(std::string_view argument) {
    std::string text;
    appendQuoted(text, argument);
    return text;
}

void appendQuoted(std::string& text, std::string_view argument) {
    if (travelsAsItIs(argument)) {
        text += argument;
        return;
    }
    text += '"';
    text += argument;
    text += '"';
}

} // namespace station
