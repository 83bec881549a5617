#pragma once

#include "wire/Descriptor.h"

namespace System {

/// Descriptors that no child process can inherit, not even a shell that another thread starts at the
/// same moment. Any thread. On failure the result is empty and `errno` tells why.

/// A TCP socket over IPv4.
Descriptor openTcpSocket();

/// The next connection of a listening socket; waits for it.
Descriptor acceptConnection(int listeningSocket);

/// A pipe; false and `errno` on failure, with both ends left as they were.
bool openPipe(Descriptor& readEnd, Descriptor& writeEnd);

/// Makes sure that the numbers 0, 1 and 2 are taken (by the null device where they were closed), so that
/// nothing opened later is mistaken for a standard stream. Call it before any thread exists.
void openStandardStreams();

} // namespace System
