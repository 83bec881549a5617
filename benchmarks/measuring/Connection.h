#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "wire/Descriptor.h"

namespace Measuring {

/// The text as a line of the ASCII protocol: STX, text, ETX, LF.
std::string framed(std::string_view text);

/// Whether the bytes end with ETX LF, which ends a request as well as an answer.
bool endsLine(const char* bytes, std::size_t length);

/// Writes all bytes, blocking. Throws std::system_error when the peer has gone.
void writeAll(int descriptor, std::string_view bytes);

/// One kept TCP connection to a server on this machine, with TCP_NODELAY. Calls block, for at most a
/// minute without progress; then they throw, as they do for every other failure. One thread at a time.
class Connection {
public:
    explicit Connection(std::uint16_t port);

    void send(std::string_view bytes) { writeAll(m_socket.get(), bytes); }

    /// The bytes of the next answer, framing included; they stay valid until the next call.
    std::string_view receiveAnswer();

    std::string_view exchange(std::string_view request) {
        send(request);
        return receiveAnswer();
    }

    int descriptor() const { return m_socket.get(); }

private:
    System::Descriptor m_socket;
    std::vector<char> m_answer;
};

} // namespace Measuring
