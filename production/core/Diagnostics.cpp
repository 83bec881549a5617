#include "core/Diagnostics.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>

#include "core/StandardStream.h"
#include "core/StringFormat.h"

namespace {

constexpr std::size_t kRoom = 1000;

/// False when there is no memory for it.
bool writeLong(std::string_view prefix, std::size_t length, const char* format, va_list arguments,
               std::string_view end) {
    try {
        std::string text(prefix);
        text += vstring_format(length + 1, format, arguments);
        text += end;
        StandardStream::error().write(text);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void write(std::string_view prefix, const char* format, va_list arguments, std::string_view end) {
    char text[kRoom];
    const std::size_t before = prefix.copy(text, kRoom);
    const std::size_t room = kRoom - before - end.size();
    va_list again;
    va_copy(again, arguments);
    const int written = std::vsnprintf(text + before, room, format, arguments);
    auto length = static_cast<std::size_t>(std::max(written, 0));
    if (length < room || !writeLong(prefix, length, format, again, end)) {
        length = before + std::min(length, room - 1);
        length += end.copy(text + length, end.size());
        StandardStream::error().write({text, length});
    }
    va_end(again);
}

} // namespace

void printDiagnostic(const char* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    write(kDiagnosticPrefix, format, arguments, "\n");
    va_end(arguments);
}

void printError(const char* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    write({}, format, arguments, {});
    va_end(arguments);
}
