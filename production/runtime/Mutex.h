#pragma once

#include <pthread.h>

namespace System {

/// A POSIX mutex whose operations report success instead of throwing. An object that could not be
/// initialised stays inert: locking it does nothing and returns false.
class Mutex {
public:
    /// Any other value than these two makes a recursive one.
    enum Type : int { Normal = 0, Recursive = 1 };

    explicit Mutex(Type type);
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    /// Waits for the mutex. True when the caller holds it now.
    bool lock();
    bool unlock();
    bool isValid() const { return m_valid; }

private:
    friend class Condition;

    bool m_valid = false;
    pthread_mutex_t m_mutex;
};

/// Holds a mutex for the length of a scope.
class Lock {
public:
    explicit Lock(Mutex& mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~Lock() { m_mutex.unlock(); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    Mutex& m_mutex;
};

} // namespace System
