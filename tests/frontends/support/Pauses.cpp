#include "support/Pauses.h"

#include <poll.h>

#include <utility>

namespace {

thread_local bool s_isNoting = false;
thread_local std::vector<int> s_pauses;

} // namespace

Pauses::Pauses() {
    s_isNoting = true;
}

Pauses::~Pauses() {
    s_isNoting = false;
    s_pauses.clear();
}

std::vector<int> Pauses::take() {
    return std::exchange(s_pauses, {});
}

extern "C" {

int __real_poll(pollfd*, nfds_t, int);
int __wrap_poll(pollfd* events, nfds_t count, int limit) {
    if (events != nullptr || !s_isNoting)
        return __real_poll(events, count, limit);
    s_pauses.push_back(limit);
    return 0;
}

} // extern "C"
