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

} // namespace System
