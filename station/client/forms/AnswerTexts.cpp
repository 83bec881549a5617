#include "client/forms/AnswerTexts.h"

#include <algorithm>

#include "client/Failure.h"
#include "client/Hex.h"
#include "client/Quoting.h"

namespace station {

namespace {

constexpr char kDone[] = "ok";

bool isTextCharacter(char c) {
    return (c >= 0x20 && c <= 0x7E) || c == '\n' || c == '\t' || c == '\r';
}

[[noreturn]] void failLength(std::string_view payload, const std::string& expected) {
    throw Failure(Failure::Kind::MalformedAnswer,
                  "malformed answer: expected a payload of " + expected + " bytes, and not " +
                      std::to_string(payload.size()) + ": " + hexArgument(payload));
}

} // namespace

void checkLength(std::string_view payload, std::size_t length) {
    if (payload.size() != length)
        failLength(payload, std::to_string(length));
}

std::string hexText(std::string_view payload) {
    return "hex(" + hexDigits(payload) + ")";
}

AnswerText doneText(std::size_t length) {
    return [length](std::string_view payload) {
        checkLength(payload, length);
        return std::string(kDone);
    };
}

AnswerText hexTextOf(std::size_t length) {
    return [length](std::string_view payload) {
        checkLength(payload, length);
        return hexText(payload);
    };
}

AnswerText base64TextOf(std::size_t length, std::string_view opening) {
    return [length, opening = std::string(opening)](std::string_view payload) {
        checkLength(payload, length);
        return opening + base64Argument(payload);
    };
}

AnswerText base64TextUpTo(std::size_t most, std::string_view opening) {
    return [most, opening = std::string(opening)](std::string_view payload) {
        if (payload.size() > most)
            failLength(payload, "at most " + std::to_string(most));
        return opening + base64Argument(payload);
    };
}

AnswerText printedText() {
    return [](std::string_view payload) {
        return std::all_of(payload.begin(), payload.end(), isTextCharacter) ? std::string(payload)
                                                                            : hexArgument(payload);
    };
}

} // namespace station
