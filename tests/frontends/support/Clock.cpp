#include "support/Clock.h"

#include <cerrno>
#include <ctime>

namespace {

// Other threads read their own clock meanwhile.
thread_local bool s_isSet = false;
thread_local bool s_isBroken = false;
thread_local timespec s_time{};

} // namespace

Clock::Clock() {
    set(0, 0);
}

Clock::~Clock() {
    s_isSet = false;
    s_isBroken = false;
}

void Clock::set(std::int64_t seconds, std::int64_t nanoseconds) {
    s_time.tv_sec = static_cast<time_t>(seconds);
    s_time.tv_nsec = static_cast<long>(nanoseconds);
    s_isSet = true;
    s_isBroken = false;
}

void Clock::breakDown() {
    s_isBroken = true;
}

extern "C" {

int __real_clock_gettime(clockid_t, timespec*);
int __wrap_clock_gettime(clockid_t clock, timespec* time) {
    if (clock != CLOCK_MONOTONIC || !s_isSet)
        return __real_clock_gettime(clock, time);
    if (s_isBroken) {
        errno = EINVAL;
        return -1;
    }
    *time = s_time;
    return 0;
}

} // extern "C"
