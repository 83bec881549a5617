#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace station {

/// The checksum of the unit's `diag cksum`, over bytes that come piece by piece: a dump is larger than
/// memory. CRC-32's polynomial, most significant bit first; the first four bytes, inverted, are the
/// register's start, no zero bytes follow the last, and the result is inverted.
class Checksum {
public:
    /// The unit has no checksum of fewer bytes.
    static constexpr std::uint64_t kFewestBytes = 4;

    void add(std::string_view bytes);

    /// Nothing for fewer than `kFewestBytes`.
    std::optional<std::uint32_t> value() const;

private:
    std::uint32_t m_register = 0;
    std::uint64_t m_count = 0;
};

/// Of one whole range.
std::optional<std::uint32_t> checksumOf(std::string_view bytes);

} // namespace station
