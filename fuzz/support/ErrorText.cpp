#include "support/ErrorText.h"

#include <cstdarg>
#include <mutex>
#include <utility>

#include "core/Diagnostics.h"
#include "core/StringFormat.h"

namespace {

constexpr std::size_t kRoom = 1000;

std::mutex guard;
std::string kept;

} // namespace

void ErrorText::add(const std::string& text) {
    const std::lock_guard<std::mutex> lock(guard);
    kept += text;
}

std::string ErrorText::taken() {
    const std::lock_guard<std::mutex> lock(guard);
    return std::exchange(kept, {});
}

void printDiagnostic(const char* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    ErrorText::add(kDiagnosticPrefix + vstring_format(kRoom, format, arguments) + "\n");
    va_end(arguments);
}

void printError(const char* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    ErrorText::add(vstring_format(kRoom, format, arguments));
    va_end(arguments);
}
