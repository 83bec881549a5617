#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The unit's TCP sockets, as the kernel lists them.
struct TcpSocket {
    static constexpr int kEstablished = 0x01;
    static constexpr int kListening = 0x0A;

    std::string localAddress; ///< hexadecimal, in the machine's byte order
    int localPort;
    int remotePort;
    int state;
    std::uint64_t unread; ///< bytes that have arrived and not been read
};

/// `table` is "/proc/net/tcp" or "/proc/net/tcp6"; empty when the system has no such table.
std::vector<TcpSocket> tcpSockets(const std::string& table = "/proc/net/tcp");

/// Whether somebody listens at the daemon's port.
bool isListening();
