#pragma once

#include <sys/types.h>

#include <functional>

#include "wire/Descriptor.h"

namespace System {

/// What each system does in its own way for `platform/Node.h`; `nodeStatus` is one of them, too.

/// Opens with these flags, and keeps the descriptor from
/// what is started later. Empty and `errno` on failure.
Descriptor openFile(const char* path, int flags);

/// Does a transfer on what `openFile` has opened with O_NONBLOCK; when that would have to wait for one
/// of the `poll` events, up to `kLongestNodeWait`. Past interruptions. -1 and `errno` on failure.
ssize_t transferInTime(int node, short events, const std::function<ssize_t()>& transfer);

} // namespace System
