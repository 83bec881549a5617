#pragma once

#include "support/ByteStream.h"

/// A station's connection to the daemon. What cannot go on throws std::runtime_error.
class Connection : public ByteStream {
public:
    static constexpr int kPort = 15051;
    static constexpr char kLoopback[] = "127.0.0.1";

    explicit Connection(const char* address = kLoopback) : Connection(address, false) {}

    /// One whose system takes in little of what its station does not read.
    static Connection withSmallBuffer() { return {kLoopback, true}; }

    /// Returns when the daemon has taken everything that was sent out of its socket, or has closed it.
    void waitUntilTaken() const;

    /// No more requests will follow; answers can still be read.
    void shutdownSending() const;

    /// Goes without a farewell: the unit gets a reset instead of the end of the stream.
    void vanish();

private:
    Connection(const char* address, bool smallBuffer);

    int m_ownPort;
};

/// Lets the test itself have so many connections. Throws std::runtime_error.
void allowConnections(std::size_t count);
