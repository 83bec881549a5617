#pragma once

#include <stdexcept>
#include <string>

namespace headunit {

/// Why a unit could not be prepared, started, kept running or do what it was asked for; the text is one
/// line for the user.
class UnitError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// With the text that printf would print.
UnitError unitError(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// "TEXT: what the system says about NUMBER".
UnitError systemError(const std::string& text, int number);

} // namespace headunit
