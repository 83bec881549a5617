#include "platform/posix/NodeCalls.h"

#include <fcntl.h>

#include <cerrno>
#include <chrono>

#include "platform/Node.h"
#include "platform/Uninterrupted.h"
#include "platform/posix/Readiness.h"

namespace System {

Descriptor openFile(const char* path, int flags) {
    return Descriptor(uninterrupted([=] { return ::open(path, flags | O_NOCTTY | O_CLOEXEC); }));
}

bool nodeStatus(int node, struct stat& status) {
    return ::fstat(node, &status) == 0;
}

// Asks first: a driver may wait whatever the descriptor says.
ssize_t transferInTime(int node, short events, const std::function<ssize_t()>& transfer) {
    const auto deadline = std::chrono::steady_clock::now() + kLongestNodeWait;
    while (events == 0 || waitUntilReady(node, events, deadline)) {
        const ssize_t moved = transfer();
        if (moved >= 0 || (errno != EAGAIN && errno != EINTR))
            return moved;
        // Another reader was faster, or the driver says that it is ready when it is not.
        if (std::chrono::steady_clock::now() >= deadline) {
            errno = ETIMEDOUT;
            break;
        }
    }
    return -1;
}

} // namespace System
