#include "support/SocketPair.h"

#include <poll.h>
#include <sys/socket.h>

#include <gtest/gtest.h>

namespace {

constexpr int kPatienceMs = 20000;

bool readable(const System::Descriptor& socket, int patienceMs) {
    pollfd event{socket.get(), POLLIN, 0};
    return ::poll(&event, 1, patienceMs) == 1;
}

} // namespace

SocketPair::SocketPair() {
    int sockets[2] = {-1, -1};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets), 0);
    ours.reset(sockets[0]);
    peer.reset(sockets[1]);
}

void SocketPair::send(const std::string& bytes) const {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = ::send(peer.get(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        ASSERT_GT(count, 0);
        sent += static_cast<std::size_t>(count);
    }
}

std::string SocketPair::receive(std::size_t size) const {
    std::string received;
    while (received.size() < size && readable(peer, kPatienceMs)) {
        char block[65536];
        const ssize_t count =
            ::recv(peer.get(), block, std::min(sizeof block, size - received.size()), 0);
        if (count <= 0)
            break;
        received.append(block, static_cast<std::size_t>(count));
    }
    return received;
}

bool SocketPair::closed() const {
    char byte;
    return readable(peer, kPatienceMs) && ::recv(peer.get(), &byte, 1, MSG_PEEK) == 0;
}

bool SocketPair::hasSomething() const {
    return readable(peer, 0);
}
