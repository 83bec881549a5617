#include "client/Readiness.h"

#include <poll.h>

#include <cerrno>
#include <system_error>

namespace station {

bool waitUntilReady(int descriptor, short events, const Deadline& deadline) {
    while (!deadline.expired()) {
        pollfd entry = {descriptor, events, 0};
        const int ready = ::poll(&entry, 1, deadline.pollMilliseconds());
        const int error = errno;
        if (ready > 0)
            return true;
        if (ready < 0 && error != EINTR)
            throw std::system_error(error, std::system_category(), "poll");
    }
    return false;
}

bool isWorthWaiting(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace station
