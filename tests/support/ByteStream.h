#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "wire/Descriptor.h"

/// The test's end of a socket or of a terminal: raw bytes. A wait that is longer than `kPatience` fails
/// the test and gives up. One thread at a time may send and one may receive. What cannot go on throws
/// std::runtime_error.
class ByteStream {
public:
    explicit ByteStream(System::Descriptor end) : m_end(std::move(end)) {}

    void send(std::string_view bytes) const;

    /// False when the peer has gone.
    bool trySend(std::string_view bytes) const;

    /// Every byte in a write of its own, without a pause.
    void sendByteByByte(std::string_view bytes) const;

    /// Exactly so many bytes; fewer when the peer goes.
    std::string receive(std::size_t count) const;

    /// What there is, at least one byte and at most so many; nothing when the peer has gone.
    std::string receiveSome(std::size_t most) const;

    /// All up to and including this ending; what has come of it when the peer goes.
    std::string receiveTo(std::string_view ending) const;

    /// One line, to its ETX LF.
    std::string receiveLine() const { return receiveTo("\x03\n"); }

    /// One frame by its length byte.
    std::string receiveFrame() const;

    /// All that comes before the peer goes.
    std::string receiveUntilClosed() const;

    /// Whether something, or the peer's end, comes in that time.
    bool hasInputWithin(std::chrono::milliseconds time) const;
    bool isSilentFor(std::chrono::milliseconds time) const { return !hasInputWithin(time); }

    int descriptor() const { return m_end.get(); }
    void close() { m_end.reset(); }

private:
    bool waitFor(short events, std::chrono::milliseconds time) const;

    System::Descriptor m_end;
};
