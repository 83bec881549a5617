#include "unit/UnitError.h"

#include <cstdarg>
#include <system_error>

#include "unit/FormatText.h"

namespace headunit {

UnitError unitError(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    UnitError error(vformatText(format, arguments));
    va_end(arguments);
    return error;
}

UnitError systemError(const std::string& text, int number) {
    return UnitError(text + ": " + std::generic_category().message(number));
}

} // namespace headunit
