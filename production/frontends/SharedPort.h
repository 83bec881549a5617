#pragma once

#include <cstddef>

#include "devices/CommHandler.h"

/// Reading from a port that somebody else may close at any time, and perhaps open again: it is theirs
/// then, and their doing is no failure.
namespace SharedPort {

/// Whether that is how the read of a port that was open has ended.
bool isTaken(const DeviceResult& result, bool wasOpen);

/// Reports a failure as `Comm::Handle::read` does, unless the port was taken.
DeviceResult receive(Comm::Handle& port, bool wasOpen, unsigned& count, unsigned char* buffer,
                     std::size_t length, unsigned timeoutMs);

} // namespace SharedPort
