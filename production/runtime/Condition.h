#pragma once

#include <pthread.h>

#include <chrono>

#include "runtime/Mutex.h"

namespace System {

/// A condition variable on the monotonic clock. Waits may end without a signal: wait in a loop that
/// tests a predicate.
class Condition {
public:
    Condition();
    virtual ~Condition();
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;

    /// Wakes one waiter. True when the system call succeeded, whether or not anybody waited.
    bool signal();

    /// Gives `mutex`, which the caller holds, back while waiting and takes it again before returning.
    bool wait(Mutex& mutex);

    /// The same, but no longer than this. True when it was woken in time.
    bool waitFor(Mutex& mutex, std::chrono::milliseconds limit);

    bool isValid() const { return m_valid; }

private:
    pthread_cond_t m_condition;
    bool m_valid = false;
};

} // namespace System
