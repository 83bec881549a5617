#pragma once

#include <vector>

#include "platform/DeviceManager.h"
#include "wire/Descriptor.h"

namespace System {

/// Requests that only the driver of a network interface understands. Any thread.

/// The way to the network stack: a datagram socket that no
/// child process inherits. Empty and `errno` on failure.
Descriptor openDatagramSocket();

/// Sends the parts as one message to the driver behind `interface`, and takes the reply into the same
/// parts: the header of a device control, the driver's private request, and the data, which is last.
/// Returns 0, or the error number that it failed with as a negative number, and then `errno` has it as
/// well. Blocks until the driver answers, for `kLongestAnswer` at most when that is another process.
int messageInterface(int socket, const char* interface, const std::vector<ReplyPart>& parts);

} // namespace System
