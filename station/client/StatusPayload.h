#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace station {

constexpr unsigned char kStatusId = 's';
constexpr unsigned char kStatusEcho = 0x2C; ///< D2 of every status, whatever the request says there
constexpr std::size_t kStatusPayload = 16;  ///< bytes

/// A status payload of `kStatusPayload` bytes as the ASCII answer says it, for example
/// "2026/11/21 09:03" A024 "1A" 4 with the quotation marks. The seconds of the build are not in it, and
/// a day below 10 has a blank in front.
std::string statusText(std::string_view payload);

} // namespace station
