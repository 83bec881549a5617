#include "support/Connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <stdexcept>

#include "platform/Descriptors.h"
#include "support/SocketTable.h"
#include "support/Waiting.h"

namespace {

constexpr int kSmallBuffer = 64 * 1024;

[[noreturn]] void fail(const std::string& what, int error) {
    throw std::runtime_error(what + ": " + std::strerror(error));
}

bool isEndOfConnection(int error) {
    return error == EPIPE || error == ECONNRESET;
}

int portOf(int socket) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

bool endsInLineEnd(const std::string& text) {
    return text.size() >= 2 && text.compare(text.size() - 2, 2, "\x03\n") == 0;
}

} // namespace

Connection::Connection(const char* address) : Connection(address, false) {}

Connection Connection::withSmallBuffer() {
    return {kLoopback, true};
}

Connection::Connection(const char* address, bool smallBuffer) : m_socket(System::openTcpSocket()) {
    if (!m_socket)
        fail("socket", errno);
    // Before connecting: the size of the window is agreed upon then.
    if (smallBuffer)
        ::setsockopt(m_socket.get(), SOL_SOCKET, SO_RCVBUF, &kSmallBuffer, sizeof kSmallBuffer);
    sockaddr_in unit{};
    unit.sin_family = AF_INET;
    unit.sin_port = htons(kPort);
    ::inet_pton(AF_INET, address, &unit.sin_addr);
    if (::connect(m_socket.get(), reinterpret_cast<const sockaddr*>(&unit), sizeof unit) != 0)
        fail("connect", errno);
    const int on = 1;
    ::setsockopt(m_socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    m_ownPort = portOf(m_socket.get());
}

void Connection::send(std::string_view bytes) {
    if (!trySend(bytes))
        throw std::runtime_error("send: the unit has ended the connection");
}

bool Connection::trySend(std::string_view bytes) {
    while (!bytes.empty()) {
        if (!waitFor(POLLOUT, kPatience))
            throw std::runtime_error("send: the unit does not read");
        const ssize_t count =
            ::send(m_socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (isEndOfConnection(errno))
            return false;
        else if (errno != EINTR && errno != EAGAIN)
            fail("send", errno);
    }
    return true;
}

void Connection::sendByteByByte(std::string_view bytes) {
    for (const char& byte : bytes)
        send({&byte, 1});
}

void Connection::waitUntilTaken() const {
    const bool taken = eventually([this] {
        const auto sockets = tcpSockets();
        return std::none_of(sockets.begin(), sockets.end(), [this](const TcpSocket& socket) {
            return socket.localPort == kPort && socket.remotePort == m_ownPort && socket.unread > 0;
        });
    });
    if (!taken)
        throw std::runtime_error("the daemon does not read what was sent");
}

std::string Connection::receive(std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t done = 0;
    while (done < count) {
        const std::size_t more = receiveSome(bytes.data() + done, count - done);
        if (more == 0)
            break;
        done += more;
    }
    bytes.resize(done);
    return bytes;
}

std::string Connection::receiveLine() {
    std::string line;
    char byte = 0;
    while (!endsInLineEnd(line) && receiveSome(&byte, 1) == 1)
        line += byte;
    return line;
}

std::string Connection::receiveUntilClosed() {
    std::string all;
    std::array<char, 4096> bytes;
    for (;;) {
        if (!waitFor(POLLIN, kPatience))
            throw std::runtime_error("the unit does not end the connection");
        const std::size_t count = receiveSome(bytes.data(), bytes.size());
        if (count == 0)
            return all;
        all.append(bytes.data(), count);
    }
}

void Connection::shutdownSending() const {
    ::shutdown(m_socket.get(), SHUT_WR);
}

void Connection::vanish() {
    const linger atOnce{1, 0};
    ::setsockopt(m_socket.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    m_socket.reset();
}

bool Connection::hasInputWithin(std::chrono::milliseconds time) const {
    return waitFor(POLLIN, time);
}

bool Connection::waitFor(short events, std::chrono::milliseconds time) const {
    pollfd event{m_socket.get(), events, 0};
    return ::poll(&event, 1, static_cast<int>(time.count())) == 1;
}

/// 0 at the end of the connection and when the deadline has passed.
std::size_t Connection::receiveSome(char* bytes, std::size_t size) {
    for (;;) {
        if (!waitFor(POLLIN, kPatience))
            return 0;
        const ssize_t count = ::recv(m_socket.get(), bytes, size, MSG_DONTWAIT);
        if (count >= 0)
            return static_cast<std::size_t>(count);
        if (isEndOfConnection(errno))
            return 0;
        if (errno != EINTR && errno != EAGAIN)
            fail("recv", errno);
    }
}
