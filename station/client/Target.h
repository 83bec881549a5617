#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace station {

/// Where a unit is reached, written `tcp:HOST:PORT`.
struct Target {
    std::string host; ///< a name, an IPv4 address, or an IPv6 address without its brackets
    std::uint16_t port = 0;

    /// HOST is a name, an IPv4 address or a bracketed IPv6 address; PORT is 1..65535, decimal. Nothing
    /// is looked up. Anything else throws `Failure` (`InvalidRequest`).
    static Target parse(std::string_view text);

    /// The form that `parse` reads.
    std::string text() const;
};

} // namespace station
