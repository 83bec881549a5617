#pragma once

#include <stdexcept>
#include <string>

namespace headunit {

/// Why a unit could not be prepared, started or kept running; the text is one line for the user.
class UnitError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// "TEXT: what the system says about NUMBER".
UnitError systemError(const std::string& text, int number);

} // namespace headunit
