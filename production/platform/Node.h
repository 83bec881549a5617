#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <chrono>
#include <cstddef>

#include "wire/Descriptor.h"

namespace System {

/// Files and device nodes that a command uses by their paths. What stands at such a path may be
/// anything: a pipe that nobody writes to, a manager that does not answer. So no call here waits without
/// end for what a node has to say. One that would have to wait longer than `kLongestNodeWait` fails,
/// with `errno` ETIMEDOUT. Files and block devices answer by themselves, and are given the time that
/// they take. Where a node's manager is another process, only the system can end the wait for it, which
/// it cannot while a node is opened or closed (docs/porting.md). Any thread.
constexpr std::chrono::milliseconds kLongestNodeWait{500};

/// Opens for `access` (O_RDONLY, O_WRONLY or O_RDWR); nothing that is started later inherits the
/// descriptor. A pipe is open for reading once its writer has said something or has gone; for writing it
/// needs a reader that is there already (ENXIO). Empty and `errno` on failure.
///
/// The descriptor may be a non-blocking one, so it is to be read and written with the calls below.
Descriptor openNode(const char* path, int access);

/// What `fstat` tells, limited whatever it is, which is only known then. False and `errno` on failure.
bool nodeStatus(int node, struct stat& status);

/// How many bytes there are from the first position on; 0 for what has no positions. Moves the position.
/// -1 and `errno` on failure; for a folder EISDIR.
off_t nodeSize(int node);

/// One transfer, as `read` and `write` do it, past interruptions. -1 and `errno` on failure.
ssize_t readNode(int node, void* bytes, std::size_t size);
ssize_t writeNode(int node, const void* bytes, std::size_t size);

/// Reads at a position, wherever the descriptor stands. From what cannot do that in one step it is done
/// in two, and from what has no positions it reads on.
ssize_t readNodeAt(int node, void* bytes, std::size_t size, off_t position);

} // namespace System
