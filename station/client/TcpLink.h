#pragma once

#include <sys/types.h>

#include <cstddef>
#include <utility>

#include "client/Link.h"
#include "client/Target.h"
#include "wire/Descriptor.h"

namespace station {

/// A TCP connection to a unit. Owns its socket, which is closed on exec and sends small packets at once.
/// Never raises SIGPIPE.
class TcpLink : public Link {
public:
    /// Looks the host up and tries its addresses in turn; blocks until one takes the connection. Throws
    /// `Failure`: `CannotConnect` with the last address's reason, or `TimedOut`.
    static TcpLink connect(const TcpTarget& target, const Deadline& deadline);

    void send(std::string_view bytes, const Deadline& deadline) override;
    std::optional<std::string> receiveBy(const Deadline& moment) override;

private:
    explicit TcpLink(System::Descriptor socket);

    ssize_t readSome(char* bytes, std::size_t size, bool isLongAway, const Deadline& moment) const;

    System::Descriptor m_socket;
};

} // namespace station
