#include "model/Answer.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <string_view>

#include "model/Notation.h"
#include "model/Words.h"
#include "support/BinaryFrames.h"
#include "support/Lines.h"

namespace {

constexpr char kTooShort[] = "request size < 4";
constexpr std::size_t kFewestBytesToEcho = 4;
constexpr std::size_t kEcho = 3;

std::string echoOf(const Request& request, const Answer& answer) {
    std::string echo = answer.echo.empty() ? request.frame : answer.echo;
    echo.resize(kEcho);
    return echo;
}

std::string frames(const Request& request, const Answer& answer) {
    if (answer.kind == Answer::Kind::Nothing)
        return {};
    const bool refused = !answer.succeeds();
    const std::string texts = refused ? debugFrame(answer.content) : "";
    if (!isAnswered(request, answer))
        return texts + debugFrame(kTooShort);
    return texts + (request.frame.empty() ? debugFrame(kTooShort) : "") +
           framed(echoOf(request, answer) + bigEndian32(answer.code) + (refused ? "" : answer.content));
}

} // namespace

bool isAnswered(const Request& request, const Answer& answer) {
    const bool isLong = request.wholeFrame().size() >= kFewestBytesToEcho;
    const bool tellsSomething = answer.succeeds() && !answer.content.empty();
    // The front end itself answers a length without a request.
    return !request.isFrame() || isLong || tellsSomething || request.frame.empty();
}

std::string onTheWire(const Request& request, const Answer& given, const std::string& name) {
    if (request.isFrame())
        return frames(request, given);
    switch (given.kind) {
        case Answer::Kind::Nothing:
            return answer("");
        case Answer::Kind::Success:
            return answer(name + " " + given.content);
        default:
            return refused(name, formatted("%X", given.code), given.content);
    }
}

bool isAsExpected(const Request& request, const std::string& received, std::string expected) {
    constexpr std::size_t kLength = sizeof kSomeNumber - 1;
    const std::size_t at = expected.find(kSomeNumber);
    if (at == std::string::npos || at >= received.size())
        return received == expected;
    const std::size_t end = received.find_first_not_of("0123456789", at);
    const std::string number = received.substr(at, end == std::string::npos ? end : end - at);
    expected.replace(at, kLength, number);
    if (request.isFrame())
        expected[0] = asByte(byteAt(expected, 0) + static_cast<std::uint32_t>(number.size() - kLength));
    return !number.empty() && received == expected;
}

std::string formatted(const char* format, ...) {
    std::array<char, 2048> text{};
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    return text.data();
}
