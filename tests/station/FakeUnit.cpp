#include "FakeUnit.h"

#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <sys/socket.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace station {

namespace {

constexpr std::size_t kLargePiece = 65536;
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

void play(const UnitConnection& connection, const Step& step) {
    if (step.kind == Step::Sent)
        EXPECT_EQ(connection.readRequest(), step.bytes);
    else if (step.kind == Step::Silence)
        connection.waitUntilStationCloses();
    else
        connection.send(step.bytes);
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

UnitConnection::UnitConnection(System::Descriptor socket) : m_stream(std::move(socket)) {
    const int enabled = 1;
    ::setsockopt(m_stream.descriptor(), IPPROTO_TCP, TCP_NODELAY, &enabled, sizeof enabled);
}

std::string UnitConnection::readRequest() const {
    std::string request;
    for (;;) {
        const std::string more = m_stream.receiveSome(kLargePiece);
        request += more;
        const bool isComplete =
            request.size() >= kRequestEnd.size() &&
            request.compare(request.size() - kRequestEnd.size(), kRequestEnd.size(), kRequestEnd) == 0;
        if (more.empty() || isComplete)
            return request;
    }
}

bool UnitConnection::sendText(std::string_view text) const {
    return send(answer(text));
}

void UnitConnection::resetAtEnd() const {
    const linger reset = {1, 0};
    ::setsockopt(m_stream.descriptor(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
}

FakeUnit::FakeUnit(Script script, const std::string& host) : m_socket(host) {
    m_socket.listen();
    m_thread = std::thread([this, script = std::move(script)] {
        blockSignals();
        System::Descriptor accepted(::accept4(m_socket.descriptor(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!accepted)
            return;
        m_isVisited = true;
        UnitConnection connection(std::move(accepted));
        script(connection);
    });
}

FakeUnit::FakeUnit(const Steps& steps, const std::string& host)
    : FakeUnit(
          [steps](UnitConnection& connection) {
              for (const Step& step : steps)
                  play(connection, step);
          },
          host) {}

FakeUnit::~FakeUnit() {
    // Ends an accept() that nobody came for.
    ::shutdown(m_socket.descriptor(), SHUT_RDWR);
    m_thread.join();
    EXPECT_TRUE(m_isVisited) << "no station has come";
}

} // namespace station
