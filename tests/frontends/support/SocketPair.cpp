#include "support/SocketPair.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

namespace {

std::pair<System::Descriptor, System::Descriptor> connectedSockets() {
    int sockets[2] = {-1, -1};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets), 0);
    return {System::Descriptor(sockets[0]), System::Descriptor(sockets[1])};
}

} // namespace

SocketPair::SocketPair() : SocketPair(connectedSockets()) {}

SocketPair::SocketPair(std::pair<System::Descriptor, System::Descriptor> both)
    : ByteStream(std::move(both.first)), ours(std::move(both.second)) {}
