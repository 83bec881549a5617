#pragma once

#include <cstdint>
#include <istream>

namespace headunit {

/// Where the daemon of a unit listens: 127.0.0.1, this port.
constexpr std::uint16_t kDaemonPort = 15051;

/// Whether a connection to 127.0.0.1:`port` would be accepted in this process's network. The kernel's
/// tables answer that without a connection, which the daemon would see.
bool isListening(std::uint16_t port);

/// The same from one table in the form of /proc/net/tcp or /proc/net/tcp6.
bool listsListener(std::istream& table, std::uint16_t port);

} // namespace headunit
