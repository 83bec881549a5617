#include "support/Connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "platform/Descriptors.h"
#include "support/SocketTable.h"
#include "support/Waiting.h"

namespace {

constexpr int kSmallBuffer = 64 * 1024;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

System::Descriptor connectTo(const char* address, bool smallBuffer) {
    System::Descriptor socket = System::openTcpSocket();
    if (!socket)
        fail("socket");
    // Before connecting: the size of the window is agreed upon then.
    if (smallBuffer)
        ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVBUF, &kSmallBuffer, sizeof kSmallBuffer);
    sockaddr_in unit{};
    unit.sin_family = AF_INET;
    unit.sin_port = htons(Connection::kPort);
    ::inet_pton(AF_INET, address, &unit.sin_addr);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&unit), sizeof unit) != 0)
        fail("connect");
    const int on = 1;
    ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return socket;
}

int portOf(int socket) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

} // namespace

Connection::Connection(const char* address, bool smallBuffer)
    : ByteStream(connectTo(address, smallBuffer)), m_ownPort(portOf(descriptor())) {}

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

void Connection::shutdownSending() const {
    ::shutdown(descriptor(), SHUT_WR);
}

void Connection::vanish() {
    const linger atOnce{1, 0};
    ::setsockopt(descriptor(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    close();
}

void allowConnections(std::size_t count) {
    constexpr rlim_t kTestDescriptors = 100;
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = std::max<rlim_t>(limit.rlim_cur, count + kTestDescriptors);
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0)
        fail("no descriptors for so many connections");
}
