#include "client/TcpLink.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

#include "client/AddressLookup.h"
#include "client/Failure.h"
#include "client/Readiness.h"

namespace station {

namespace {

constexpr std::size_t kReceiveSize = 65536;

// How long one call waits for an answer that may take longer. It spares the call that would only wait,
// which of thousands of small requests is a good part.
constexpr std::chrono::milliseconds kPatience{50};

std::string describe(int error) {
    return std::system_category().message(error);
}

void waitFor(int socket, short events, const Deadline& deadline, const std::string& activity) {
    if (!waitUntilReady(socket, events, deadline))
        throw Failure(Failure::Kind::TimedOut, "time-out while " + activity);
}

/// 0, or the error number that says why this address did not take the connection.
int connectSocket(int socket, const addrinfo& address, const Deadline& deadline,
                  const std::string& activity) {
    if (::connect(socket, address.ai_addr, address.ai_addrlen) == 0)
        return 0;
    const int started = errno;
    // An interrupted connect() goes on in the background like one in progress.
    if (started != EINPROGRESS && started != EINTR)
        return started;
    waitFor(socket, POLLOUT, deadline, activity);
    int result = 0;
    socklen_t size = sizeof result;
    if (::getsockopt(socket, SOL_SOCKET, SO_ERROR, &result, &size) != 0)
        return errno;
    return result;
}

bool isConnectionEnd(int error) {
    return error == ECONNRESET || error == EPIPE;
}

} // namespace

TcpLink::TcpLink(System::Descriptor socket) : m_socket(std::move(socket)) {
    const int enabled = 1;
    ::setsockopt(m_socket.get(), IPPROTO_TCP, TCP_NODELAY, &enabled, sizeof enabled);
    const timeval patience = {0, std::chrono::microseconds(kPatience).count()};
    ::setsockopt(m_socket.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    ::fcntl(m_socket.get(), F_SETFL, ::fcntl(m_socket.get(), F_GETFL) & ~O_NONBLOCK);
}

TcpLink TcpLink::connect(const TcpTarget& target, const Deadline& deadline) {
    const std::string activity = "connecting to " + target.text();
    const AddressList addresses = lookUp(target, deadline);
    int error = 0;
    for (const addrinfo* address = addresses.get(); address != nullptr; address = address->ai_next) {
        System::Descriptor socket(
            ::socket(address->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        error = socket ? 0 : errno;
        if (error == 0)
            error = connectSocket(socket.get(), *address, deadline, activity);
        if (error != 0)
            continue;
        return TcpLink(std::move(socket));
    }
    throw Failure(Failure::Kind::CannotConnect,
                  "cannot connect to " + target.text() + ": " + describe(error));
}

void TcpLink::send(std::string_view bytes, const Deadline& deadline) {
    while (!bytes.empty()) {
        const ssize_t sent =
            ::send(m_socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        const int error = errno;
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
            continue;
        }
        if (!isWorthWaiting(error))
            throw Failure(Failure::Kind::ConnectionLost,
                          "the connection was lost while sending the command: " + describe(error));
        waitFor(m_socket.get(), POLLOUT, deadline, "sending the command");
    }
}

std::optional<std::string> TcpLink::receiveBy(const Deadline& moment) {
    std::array<char, kReceiveSize> buffer;
    for (;;) {
        const bool isLongAway = moment.time() - Deadline::Clock::now() > kPatience;
        const ssize_t received = readSome(buffer.data(), buffer.size(), isLongAway, moment);
        const int error = errno;
        if (received >= 0)
            return std::string(buffer.data(), static_cast<std::size_t>(received));
        if (isConnectionEnd(error))
            return std::string();
        if (!isWorthWaiting(error))
            throw Failure(Failure::Kind::ConnectionLost,
                          "the connection was lost while waiting for the answer: " + describe(error));
        if (!isLongAway && moment.expired())
            return std::nullopt;
    }
}

ssize_t TcpLink::readSome(char* bytes, std::size_t size, bool isLongAway, const Deadline& moment) const {
    if (isLongAway)
        return ::recv(m_socket.get(), bytes, size, 0);
    waitUntilReady(m_socket.get(), POLLIN, moment);
    return ::recv(m_socket.get(), bytes, size, MSG_DONTWAIT);
}

} // namespace station
