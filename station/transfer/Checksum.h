#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace station {

/// The checksum of the unit's `diag cksum` over bytes that come piece by piece:
/// a dump is larger than memory.
class Checksum {
public:
    /// The unit has no checksum of fewer bytes.
    static constexpr std::size_t kFewestBytes = 4;

    void add(std::string_view bytes);

    /// Nothing for fewer than `kFewestBytes`.
    std::optional<std::uint32_t> value() const;

private:
    std::uint32_t m_register = ~std::uint32_t{0};
    std::string m_last; // at most kFewestBytes: the last ones are not divided
};

/// Of one whole range below 4 GiB. One thread at a time.
std::optional<std::uint32_t> checksumOf(std::string_view bytes);

} // namespace station
