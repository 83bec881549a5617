#include "core/Answer.h"

#include <cstdarg>
#include <utility>

#include "core/StringFormat.h"

namespace {

constexpr std::size_t kFirstRoom = 256;

Answer withMessage(std::uint32_t code, const char* format, va_list arguments) {
    Answer answer = failure(code);
    answer->message = vstring_format(kFirstRoom, format, arguments);
    return answer;
}

} // namespace

Answer success() {
    return std::make_unique<ProcessResponse>(ProcessResponse::kSuccess);
}

Answer asciiSuccess(std::string text) {
    auto answer = std::make_unique<ProcessResponseAscii>(ProcessResponse::kSuccess, "");
    answer->answer = std::move(text);
    return answer;
}

Answer failure(std::uint32_t code) {
    return std::make_unique<ProcessResponse>(code);
}

Answer failure(std::uint32_t code, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Answer answer = withMessage(code, format, arguments);
    va_end(arguments);
    return answer;
}

Answer genericError(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Answer answer = withMessage(ProcessResponse::kGenericError, format, arguments);
    va_end(arguments);
    return answer;
}

Answer wrongTokenCount(const char* format, const std::vector<std::vector<char>>& tokens) {
    return genericError(format, static_cast<int>(tokens.size()) - 1);
}
