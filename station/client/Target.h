#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace station {

/// A unit's port, written `tcp:HOST:PORT`.
struct TcpTarget {
    std::string host; ///< a name, an IPv4 address, or an IPv6 address without its brackets
    std::uint16_t port = 0;

    /// The form that `parseTarget` reads.
    std::string text() const;
};

/// The terminal at the station's end of a unit's serial line, written `serial:PATH`.
struct SerialTarget {
    std::string path;

    /// The form that `parseTarget` reads.
    std::string text() const;
};

/// Where a unit is reached.
using Target = std::variant<TcpTarget, SerialTarget>;

/// HOST is a name, an IPv4 address or a bracketed IPv6 address; PORT is 1..65535, decimal; PATH is any
/// path. Nothing is looked up. Anything else throws `Failure` (`InvalidRequest`).
Target parseTarget(std::string_view text);

} // namespace station
