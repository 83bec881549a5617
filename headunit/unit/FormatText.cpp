#include "unit/FormatText.h"

#include <algorithm>
#include <cstdio>

namespace headunit {

std::string formatText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string text = vformatText(format, arguments);
    va_end(arguments);
    return text;
}

std::string vformatText(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

} // namespace headunit
