#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace station {

constexpr std::size_t kLongestFrame = 255;     ///< bytes, the length byte included
constexpr std::size_t kLongestPayload = 247;   ///< bytes, of an answer
constexpr std::size_t kRequestFrameHeader = 2; ///< bytes: length and command id
constexpr unsigned char kAckId = 0x06;         ///< of the command that absorbs what it is sent

/// A request as it travels over a binary link: D0 length, D1 command id, D2... sub-command and
/// parameters. Throws `Failure` (`InvalidRequest`) when that is longer than `kLongestFrame`.
std::string requestFrame(unsigned char id, std::string_view rest);

} // namespace station
