#pragma once

#include <chrono>
#include <string>

#include "platform/Descriptor.h"

/// Two connected stream sockets: ours for the code under test, the peer's for the test.
struct SocketPair {
    SocketPair();

    /// Sends all of `bytes` as the peer.
    void send(const std::string& bytes) const;
    /// What the peer gets until it has `size` bytes or the other side has closed; less when it does not
    /// come.
    std::string receive(std::size_t size) const;
    /// True when the other side has closed and the peer has read everything.
    bool closed() const;
    /// True when something waits to be read by the peer.
    bool hasSomething() const;

    System::Descriptor ours;
    System::Descriptor peer;
};
