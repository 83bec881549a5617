#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "wire/LittleEndian.h"

namespace headunit {

/// What goes over the socket of a device manager: one request is one packet, one answer is one packet,
/// numbers are 32-bit little-endian.

struct ManagerRequest {
    std::uint32_t command = 0; ///< 0 for a plain message
    std::string_view sent;     ///< the send parts, one after the other
    std::uint32_t room = 0;    ///< bytes that the reply parts can take
};

struct ManagerAnswer {
    std::int32_t result = 0; ///< 0 or an error number
    std::string bytes;       ///< for the reply parts
};

/// Nothing when the packet is no request. The result refers to the packet's bytes.
std::optional<ManagerRequest> decodeRequest(std::string_view packet);

/// No more bytes than there is room for.
std::string encodeAnswer(const ManagerAnswer& answer, std::uint32_t room);

} // namespace headunit
