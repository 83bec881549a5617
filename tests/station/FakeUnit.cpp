#include "FakeUnit.h"

#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace station {

namespace {

constexpr time_t kPatienceSeconds = 30;
constexpr std::string_view kRequestEnd = "\x03\n";

[[noreturn]] void fail(const char* call) {
    throw std::system_error(errno, std::system_category(), call);
}

/// Signals of a test are for the thread that runs the test.
void blockSignals() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

} // namespace

BoundSocket::BoundSocket(const std::string& host) {
    addrinfo wanted = {};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    addrinfo* address = nullptr;
    if (::getaddrinfo(host.c_str(), "0", &wanted, &address) != 0)
        fail("getaddrinfo");
    m_socket.reset(::socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const bool isBound = m_socket && ::bind(m_socket.get(), address->ai_addr, address->ai_addrlen) == 0;
    ::freeaddrinfo(address);
    if (!isBound)
        fail("bind");

    sockaddr_storage bound = {};
    socklen_t size = sizeof bound;
    ::getsockname(m_socket.get(), reinterpret_cast<sockaddr*>(&bound), &size);
    // The port stands at the same place for both families.
    const auto* inet = reinterpret_cast<const sockaddr_in*>(&bound);
    m_target = TcpTarget{host, ntohs(inet->sin_port)};
}

void BoundSocket::listen(int backlog) const {
    if (::listen(m_socket.get(), backlog) != 0)
        fail("listen");
}

UnitConnection::UnitConnection(System::Descriptor socket) : m_socket(std::move(socket)) {
    const timeval patience = {kPatienceSeconds, 0};
    ::setsockopt(m_socket.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    ::setsockopt(m_socket.get(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    const int enabled = 1;
    ::setsockopt(m_socket.get(), IPPROTO_TCP, TCP_NODELAY, &enabled, sizeof enabled);
}

std::string UnitConnection::readRequest() {
    std::string request;
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t received = ::recv(m_socket.get(), buffer.data(), buffer.size(), 0);
        if (received < 0)
            ADD_FAILURE() << "no request arrived";
        if (received <= 0)
            return request;
        request.append(buffer.data(), static_cast<std::size_t>(received));
        const bool isComplete =
            request.size() >= kRequestEnd.size() &&
            request.compare(request.size() - kRequestEnd.size(), kRequestEnd.size(), kRequestEnd) == 0;
        if (isComplete)
            return request;
    }
}

bool UnitConnection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(m_socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

bool UnitConnection::sendText(std::string_view text) {
    return send(framed(text));
}

void UnitConnection::sendByteByByte(std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i)
        send(bytes.substr(i, 1));
}

void UnitConnection::waitUntilStationCloses() {
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t received = ::recv(m_socket.get(), buffer.data(), buffer.size(), 0);
        const int error = errno;
        if (received == 0 || (received < 0 && error == ECONNRESET))
            return;
        if (received > 0)
            continue;
        ADD_FAILURE() << "the station did not close the connection";
        return;
    }
}

void UnitConnection::resetAtEnd() {
    const linger reset = {1, 0};
    ::setsockopt(m_socket.get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
}

FakeUnit::FakeUnit(Script script, const std::string& host) : m_socket(host) {
    m_socket.listen();
    m_thread = std::thread([this, script = std::move(script)] {
        blockSignals();
        System::Descriptor accepted(::accept4(m_socket.descriptor(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!accepted)
            return;
        UnitConnection connection(std::move(accepted));
        script(connection);
    });
}

FakeUnit::~FakeUnit() {
    // Ends an accept() that nobody came for.
    ::shutdown(m_socket.descriptor(), SHUT_RDWR);
    m_thread.join();
}

std::string framed(std::string_view text) {
    return "\x02#" + std::string(text) + "\x03\n";
}

} // namespace station
