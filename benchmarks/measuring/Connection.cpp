#include "measuring/Connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

#include "measuring/Failure.h"
#include "wire/Line.h"

namespace Measuring {

namespace {

constexpr std::size_t kReadSize = 4096;
constexpr timeval kPatience{60, 0};

template <typename Value>
void setOption(int socket, int level, int option, const Value& value) {
    if (::setsockopt(socket, level, option, &value, sizeof value) != 0)
        throw failure("cannot set a socket option");
}

} // namespace

std::string framed(std::string_view text) {
    std::string line;
    line.reserve(text.size() + 3);
    wire::appendRequest(line, text);
    return line;
}

bool endsLine(const char* bytes, std::size_t length) {
    constexpr std::string_view kEnd = wire::kLineEnd;
    return length >= kEnd.size() && kEnd.compare({bytes + length - kEnd.size(), kEnd.size()}) == 0;
}

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            throw failure("cannot send");
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

Connection::Connection(std::uint16_t port)
    : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), m_answer(kReadSize) {
    if (!m_socket)
        throw failure("cannot create a socket");
    setOption(m_socket.get(), IPPROTO_TCP, TCP_NODELAY, 1);
    setOption(m_socket.get(), SOL_SOCKET, SO_RCVTIMEO, kPatience);
    setOption(m_socket.get(), SOL_SOCKET, SO_SNDTIMEO, kPatience);

    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw failure("cannot connect to port " + std::to_string(port));
}

std::string_view Connection::receiveAnswer() {
    std::size_t received = 0;
    while (!endsLine(m_answer.data(), received)) {
        if (received == m_answer.size())
            m_answer.resize(2 * received);
        const ssize_t count =
            ::read(m_socket.get(), m_answer.data() + received, m_answer.size() - received);
        if (count == 0)
            throw std::runtime_error("the server closed the connection");
        if (count < 0) {
            if (errno == EINTR)
                continue;
            throw failure("no answer");
        }
        received += static_cast<std::size_t>(count);
    }
    return {m_answer.data(), received};
}

} // namespace Measuring
