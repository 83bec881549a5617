#pragma once

#include <array>
#include <cstddef>

/// How frames travel over the serial line. A request: D0 the number of its bytes, D1 the command's id,
/// D2... its sub-command and parameters. An answer: D0 the number of its bytes, D1..D3 of the request,
/// D4..D7 the status code, most significant byte first, D8... the payload. A debug frame: D0 the number
/// of its bytes, D1 'd', D2... text.
namespace wire {

constexpr std::size_t kLongestFrame = 255; ///< bytes, the first one included
constexpr std::size_t kRequestHeader = 2;
constexpr std::size_t kAnswerHeader = 8;
constexpr std::size_t kLongestPayload = kLongestFrame - kAnswerHeader;

constexpr char kDebugId = 'd';
constexpr unsigned char kAckId = 0x06;

/// What either side sends when it has received a frame: a request for the command that answers nothing.
constexpr std::array<unsigned char, kRequestHeader> kAcknowledgement = {kRequestHeader, kAckId};

} // namespace wire
