#pragma once

#include <sys/types.h>

#include <cerrno>

namespace System {

/// Makes a system call that moves bytes, again for as long as signals interrupt it.
template <typename Transfer>
ssize_t uninterrupted(const Transfer& transfer) {
    ssize_t moved = 0;
    do {
        moved = transfer();
    } while (moved < 0 && errno == EINTR);
    return moved;
}

} // namespace System
