#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/ProcessResponse.h"
#include "core/ProcessResponseAscii.h"
#include "core/ProcessResponseTavrin.h"

/// How a request ended, on its way through a command: whoever holds it owns it. Only what is given as a
/// plain pointer releases it, as its last step.
using Answer = std::unique_ptr<ProcessResponse>;

inline bool failed(const ProcessResponse& response) {
    return response.code != ProcessResponse::kSuccess;
}

Answer success();
/// The success of a line, with the text to answer.
Answer asciiSuccess(std::string text);

/// A failure with a code of its own.
Answer failure(std::uint32_t code);
Answer failure(std::uint32_t code, const char* format, ...) __attribute__((format(printf, 2, 3)));

Answer genericError(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The generic error of a line with the wrong number of tokens: `format` tells how many follow the
/// command's name.
Answer wrongTokenCount(const char* format, const std::vector<std::vector<char>>& tokens)
    __attribute__((format(printf, 1, 0)));

/// A failure in the class of a protocol.
template <typename Response>
Answer failureIn(const Answer& failure) {
    return std::make_unique<Response>(failure->code, "%s", failure->message.c_str());
}

/// A success in the class of a protocol, with what that answers where a command has nothing to say; a
/// failure stays what it is.
template <typename Response>
Answer successIn(Answer result) {
    return failed(*result) ? std::move(result)
                           : std::make_unique<Response>(ProcessResponse::kSuccess, "");
}
