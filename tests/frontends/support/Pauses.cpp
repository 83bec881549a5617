#include "support/Pauses.h"

#include <time.h>

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

int __real_nanosleep(const timespec*, timespec*);
int __wrap_nanosleep(const timespec* length, timespec* left) {
    if (!s_isNoting)
        return __real_nanosleep(length, left);
    s_pauses.push_back(static_cast<int>(length->tv_sec * 1000 + length->tv_nsec / 1'000'000));
    return 0;
}

} // extern "C"
