#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include "Steps.h"
#include "client/Target.h"
#include "support/ByteStream.h"
#include "support/Lines.h"
#include "wire/Descriptor.h"

namespace station {

/// A socket bound to a free port of an address of this machine.
class BoundSocket {
public:
    explicit BoundSocket(const std::string& host = "127.0.0.1");

    /// Completes at most `backlog` + 1 connections until they are accepted.
    void listen(int backlog = 5) const;

    int descriptor() const { return m_socket.get(); }
    const TcpTarget& target() const { return m_target; }

private:
    System::Descriptor m_socket;
    TcpTarget m_target;
};

/// A unit's end of a connection.
class UnitConnection {
public:
    explicit UnitConnection(System::Descriptor socket);

    /// Bytes up to and including ETX LF, or up to the end of the connection.
    std::string readRequest() const;

    /// False once the station has gone.
    bool send(std::string_view bytes) const { return m_stream.trySend(bytes); }

    /// One text with its framing.
    bool sendText(std::string_view text) const;

    /// Each byte in a write of its own.
    void sendByteByByte(std::string_view bytes) const { m_stream.sendByteByByte(bytes); }

    void waitUntilStationCloses() const { m_stream.receiveUntilClosed(); }

    /// The connection ends in a reset instead of in order.
    void resetAtEnd() const;

private:
    ByteStream m_stream;
};

/// A unit that takes one connection and plays a script on it, on a thread of its own; the connection
/// ends with the script, and the object waits for that. Nobody having come fails the test.
class FakeUnit {
public:
    using Script = std::function<void(UnitConnection&)>;

    explicit FakeUnit(Script script, const std::string& host = "127.0.0.1");
    /// What the station sends are requests; in a silence the unit waits for the station to go.
    explicit FakeUnit(const Steps& steps, const std::string& host = "127.0.0.1");
    ~FakeUnit();

    const TcpTarget& target() const { return m_socket.target(); }

private:
    BoundSocket m_socket;
    bool m_isVisited = false;
    std::thread m_thread;
};

} // namespace station
