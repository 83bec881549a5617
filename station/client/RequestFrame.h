#pragma once

#include <string>
#include <string_view>

namespace station {

/// A request as it travels over a binary link: D0 length, D1 command id, D2... sub-command and
/// parameters. Throws `Failure` (`InvalidRequest`) when that is longer than `wire::kLongestFrame`.
std::string requestFrame(unsigned char id, std::string_view rest);

} // namespace station
