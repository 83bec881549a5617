#include "client/Answer.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "client/Failure.h"

namespace station {

namespace {

constexpr std::string_view kInfoOpening = "Info \"";
constexpr std::string_view kGreetingOpening = "Info ";
constexpr std::string_view kInfoEnding = "\"";
constexpr std::string_view kRefusalOpening = "Error 0x";

// The name that answers for a command which the unit does not know.
constexpr std::string_view kUnknownCommandName = "Error";

constexpr std::size_t kLongestShownText = 80;

bool beginsWith(std::string_view text, std::string_view opening) {
    return text.substr(0, opening.size()) == opening;
}

[[noreturn]] void refuseLine(std::string_view reason, std::string_view line) {
    const bool isCut = line.size() > kLongestShownText;
    throw Failure(Failure::Kind::MalformedAnswer, "malformed answer: " + std::string(reason) + ": " +
                                                      std::string(line.substr(0, kLongestShownText)) +
                                                      (isCut ? "..." : ""));
}

/// Upper-case hexadecimal without leading zeros, at most 32 bits; so never 0.
std::optional<std::uint32_t> parseCode(std::string_view digits) {
    const bool isCanonical = !digits.empty() && digits.front() != '0' &&
                             digits.find_first_not_of("0123456789ABCDEF") == std::string_view::npos;
    if (!isCanonical)
        return std::nullopt;
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
    if (error != std::errc())
        return std::nullopt;
    return code;
}

} // namespace

std::optional<std::string> infoMessage(std::string_view line) {
    const bool isInfo = line.size() >= kInfoOpening.size() + kInfoEnding.size() &&
                        beginsWith(line, kInfoOpening) && line.back() == kInfoEnding.front();
    if (!isInfo)
        return std::nullopt;
    return std::string(
        line.substr(kInfoOpening.size(), line.size() - kInfoOpening.size() - kInfoEnding.size()));
}

std::optional<std::string> greeting(std::string_view line) {
    const bool isGreeting =
        beginsWith(line, kGreetingOpening) && line.find(kInfoEnding) == std::string_view::npos;
    if (!isGreeting)
        return std::nullopt;
    return std::string(line.substr(kGreetingOpening.size()));
}

std::string refusalText(std::uint32_t code) {
    constexpr std::size_t kLongestCode = sizeof "FFFFFFFF";
    std::array<char, kLongestCode> digits = {};
    std::snprintf(digits.data(), digits.size(), "%X", code);
    return std::string(kRefusalOpening) + digits.data();
}

Answer parseAnswer(std::string_view name, std::string_view line) {
    if (line.empty())
        return Answer{};
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos)
        refuseLine("a line without an answer", line);
    const std::string_view answeredName = line.substr(0, blank);
    const std::string_view text = line.substr(blank + 1);
    if (answeredName != name && answeredName != kUnknownCommandName)
        refuseLine("expected one to '" + std::string(name) + "'", line);

    if (beginsWith(text, kRefusalOpening)) {
        const auto code = parseCode(text.substr(kRefusalOpening.size()));
        if (!code)
            refuseLine("an error code that is none", line);
        return Answer{std::string(text), *code};
    }
    if (answeredName != name)
        refuseLine("expected one to '" + std::string(name) + "'", line);
    return Answer{std::string(text), 0};
}

} // namespace station
