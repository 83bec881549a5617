#include "platform/posix/NodeCalls.h"

#include <fcntl.h>

#include <cerrno>
#include <chrono>

#include "platform/Node.h"
#include "platform/qnx/CloseOnExec.h"
#include "platform/qnx/WaitLimit.h"

namespace System {

using Clock = std::chrono::steady_clock;
using std::chrono::nanoseconds;

Descriptor openFile(const char* path, int flags) {
    return closeOnExec(::open64(path, flags));
}

bool nodeStatus(int node, struct stat& status) {
    return limitNextWait(kLongestNodeWait) && ::fstat(node, &status) == 0;
}

// Whether a manager can tell of its readiness is up to it. The kernel ends the wait for its answer in
// any case, so the answer itself is waited for.
ssize_t transferInTime(int node, short, const std::function<ssize_t()>& transfer) {
    const Clock::time_point deadline = Clock::now() + kLongestNodeWait;
    bool managerHasToWait = false;
    for (nanoseconds left = kLongestNodeWait; left.count() > 0; left = deadline - Clock::now()) {
        if (!limitNextWait(left))
            return -1;
        if (managerHasToWait) {
            if (::fcntl(node, F_SETFL, 0) == -1)
                return -1;
            managerHasToWait = false;
            continue;
        }
        const ssize_t moved = transfer();
        if (moved >= 0 || (errno != EAGAIN && errno != EINTR))
            return moved;
        managerHasToWait = errno == EAGAIN;
    }
    errno = ETIMEDOUT;
    return -1;
}

} // namespace System
