#pragma once

#include <string>
#include <string_view>

namespace station {

/// Two upper-case digits for each byte.
std::string hexDigits(std::string_view bytes);

/// The same as an argument is written and an answer shown, for example hex(03 73 01).
std::string hexArgument(std::string_view bytes);

} // namespace station
