#include "core/StringFormat.h"

#include <cerrno>
#include <cstdio>

std::string vstring_format(std::size_t firstRoom, const char* format, va_list arguments) {
    std::string text;
    std::size_t room = firstRoom;
    for (;;) {
        text.resize(room);
        va_list copy;
        va_copy(copy, arguments);
        errno = 0;
        const int length = std::vsnprintf(text.data(), room, format, copy);
        va_end(copy);
        if (length >= 0 && static_cast<std::size_t>(length) < room) {
            text.resize(static_cast<std::size_t>(length));
            return text;
        }
        if (length >= 0)
            room = static_cast<std::size_t>(length) + 1;
        else if (errno == 0)
            room *= 2; // a library that only says "too small"
        else
            return {};
    }
}

std::string string_format(const char* format, ...) {
    constexpr std::size_t kFirstRoom = 1000;
    va_list arguments;
    va_start(arguments, format);
    std::string text = vstring_format(kFirstRoom, format, arguments);
    va_end(arguments);
    return text;
}
