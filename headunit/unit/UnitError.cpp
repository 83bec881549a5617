#include "unit/UnitError.h"

#include <system_error>

namespace headunit {

UnitError systemError(const std::string& text, int number) {
    return UnitError(text + ": " + std::generic_category().message(number));
}

} // namespace headunit
