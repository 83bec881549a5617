#pragma once

#include <cstdarg>
#include <string>

namespace headunit {

/// What printf would print, whatever its length. Any thread.
std::string formatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The same for a function with arguments of its own.
std::string vformatText(const char* format, va_list arguments) __attribute__((format(printf, 1, 0)));

} // namespace headunit
