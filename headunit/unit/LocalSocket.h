#pragma once

#include <string>

#include "wire/Descriptor.h"

namespace headunit {

/// Sockets with a name in a folder of this machine. An address has room for about a hundred characters
/// and the way to a unit's folder may be longer, so that they are reached through the open folder. Any
/// thread; nothing here blocks for long.

/// For the functions below. Empty, and errno tells why, when the folder cannot be opened.
System::Descriptor openFolder(const std::string& path);

/// A listening socket, non-blocking, of this type (SOCK_STREAM or SOCK_SEQPACKET), in the place of a
/// socket of that name. Empty, and errno tells why, when it cannot be made.
System::Descriptor listenIn(int folder, const std::string& name, int type);

/// A connection to the socket of that name, blocking. Empty when nobody listens there.
System::Descriptor connectIn(int folder, const std::string& name, int type);

/// Removes the name when it is a socket's.
void removeSocket(int folder, const std::string& name);

} // namespace headunit
