#include "platform/posix/Readiness.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>

namespace System {

bool waitUntilReady(int descriptor, short events, std::chrono::steady_clock::time_point deadline) {
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd event{descriptor, events, 0};
        const int ready = ::poll(&event, 1, static_cast<int>(std::max<long long>(left.count(), 0)));
        if (ready > 0)
            return true;
        if (ready == 0)
            errno = ETIMEDOUT;
        if (ready == 0 || errno != EINTR)
            return false;
    }
}

} // namespace System
