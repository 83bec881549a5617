#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>

/// printf-style formatting into a string of whatever length it takes; empty when the format cannot be
/// carried out. Throws std::bad_alloc.
std::string string_format(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The same with room for `firstRoom` bytes in the first
/// attempt, for callers with arguments of their own.
std::string vstring_format(std::size_t firstRoom, const char* format, va_list arguments)
    __attribute__((format(printf, 2, 0)));
