#pragma once

#include <utility>

#include "support/ByteStream.h"
#include "wire/Descriptor.h"

/// Two connected stream sockets: ours for the code under test, and this is the peer's for the test.
struct SocketPair : ByteStream {
    SocketPair();

    /// True when the other side has closed and the peer has read everything.
    bool closed() const { return receiveSome(1).empty(); }
    /// True when something waits to be read by the peer.
    bool hasSomething() const { return hasInputWithin({}); }

    System::Descriptor ours;

private:
    explicit SocketPair(std::pair<System::Descriptor, System::Descriptor> both);
};
