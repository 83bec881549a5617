#pragma once

#include <netdb.h>

#include <memory>

#include "client/Deadline.h"
#include "client/Target.h"

namespace station {

struct AddressListDeleter {
    void operator()(addrinfo* list) const { ::freeaddrinfo(list); }
};
using AddressList = std::unique_ptr<addrinfo, AddressListDeleter>;

/// The addresses to try for a target, at least one, best first. An address
/// is read at once; a name may block until the deadline. Throws `Failure`:
/// `CannotConnect` for a name without an address, or `TimedOut`.
AddressList lookUp(const TcpTarget& target, const Deadline& deadline);

} // namespace station
