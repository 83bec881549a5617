#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>

#include "platform/Descriptor.h"

namespace System {

/// Files and device nodes that a command uses by their paths. What stands at such a path may be
/// anything: a pipe that nobody writes to, a manager that does not answer. So no call here waits without
/// end. One that would have to wait longer than `kLongestNodeWait` fails, with `errno` ETIMEDOUT. Files
/// and block devices answer by themselves, and are given the time that they take. Any thread.
constexpr std::chrono::milliseconds kLongestNodeWait{500};

/// Opens for `access` (O_RDONLY, O_WRONLY or O_RDWR); nothing that is started later inherits the
/// descriptor. A pipe is open for reading once its writer has said something or has gone; for writing it
/// needs a reader that is there already (ENXIO). Empty and `errno` on failure.
///
/// The descriptor may be a non-blocking one, so it is to be read and written with the calls below.
Descriptor openNode(const char* path, int access);

/// One transfer, as `read` and `write` do it, past interruptions. -1 and `errno` on failure.
ssize_t readNode(int node, void* bytes, std::size_t size);
ssize_t writeNode(int node, const void* bytes, std::size_t size);

/// Reads at a position, wherever the descriptor stands. From what cannot do that in one step it is done
/// in two, and from what has no positions it reads on.
ssize_t readNodeAt(int node, void* bytes, std::size_t size, off_t position);

} // namespace System
