#pragma once

#include <poll.h>

#include <chrono>
#include <thread>

namespace System {

/// Polls for at most so many milliseconds. Where the system cannot, for lack of memory, or is
/// interrupted, it lets a moment pass before it says so, as poll() does: whoever tries again takes no
/// processor.
inline int patientPoll(pollfd* events, nfds_t count, int limitMs) {
    constexpr std::chrono::milliseconds kPause{5};
    const int ready = ::poll(events, count, limitMs);
    if (ready < 0)
        std::this_thread::sleep_for(kPause);
    return ready;
}

} // namespace System
