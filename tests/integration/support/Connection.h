#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/Descriptor.h"

/// A station's connection to the daemon: raw bytes, each wait with a deadline. One thread at a time.
/// What cannot go on throws std::runtime_error.
class Connection {
public:
    static constexpr int kPort = 15051;
    static constexpr char kLoopback[] = "127.0.0.1";

    explicit Connection(const char* address = kLoopback);

    /// One whose system takes in little of what its station does not read.
    static Connection withSmallBuffer();

    void send(std::string_view bytes);

    /// False when the unit has ended the connection.
    bool trySend(std::string_view bytes);

    /// Every byte in a segment of its own, without a pause.
    void sendByteByByte(std::string_view bytes);

    /// Returns when the daemon has taken everything that was sent out of its socket, or has closed it.
    void waitUntilTaken() const;

    /// Whether something, or the connection's end, comes in that time.
    bool hasInputWithin(std::chrono::milliseconds time) const;

    /// Exactly so many bytes; fewer when the unit ends the connection or the deadline passes.
    std::string receive(std::size_t count);

    /// One line, to its ETX LF; what has come of it when the unit ends the connection.
    std::string receiveLine();

    /// All that comes before the unit ends the connection.
    std::string receiveUntilClosed();

    /// No more requests will follow; answers can still be read.
    void shutdownSending() const;

    /// Goes without a farewell: the unit gets a reset instead of the end of the stream.
    void vanish();

    void close() { m_socket.reset(); }

private:
    Connection(const char* address, bool smallBuffer);

    bool waitFor(short events, std::chrono::milliseconds time) const;
    std::size_t receiveSome(char* bytes, std::size_t size);

    System::Descriptor m_socket;
    int m_ownPort = 0;
};
