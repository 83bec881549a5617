#include "runtime/Condition.h"

#include <time.h>

namespace System {

Condition::Condition() {
    pthread_condattr_t attributes;
    if (pthread_condattr_init(&attributes) != 0)
        return;
    m_valid = pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC) == 0 &&
              pthread_cond_init(&m_condition, &attributes) == 0;
    pthread_condattr_destroy(&attributes);
}

Condition::~Condition() {
    if (m_valid)
        pthread_cond_destroy(&m_condition);
}

bool Condition::signal() {
    return m_valid && pthread_cond_signal(&m_condition) == 0;
}

bool Condition::wait(Mutex& mutex) {
    return m_valid && mutex.isValid() && pthread_cond_wait(&m_condition, &mutex.m_mutex) == 0;
}

bool Condition::waitFor(Mutex& mutex, std::chrono::milliseconds limit) {
    constexpr long kNanosecondsPerSecond = 1000000000;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(limit);
    timespec deadline{};
    ::clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += static_cast<time_t>(seconds.count());
    deadline.tv_nsec += static_cast<long>(std::chrono::nanoseconds(limit - seconds).count());
    if (deadline.tv_nsec >= kNanosecondsPerSecond) {
        ++deadline.tv_sec;
        deadline.tv_nsec -= kNanosecondsPerSecond;
    }
    return m_valid && mutex.isValid() &&
           pthread_cond_timedwait(&m_condition, &mutex.m_mutex, &deadline) == 0;
}

} // namespace System
