#pragma once

#include <string>

#include "runtime/Condition.h"
#include "runtime/Mutex.h"

namespace System {

/// A detached thread with a name. Nobody joins it, so the object must outlive the body: owners delete it
/// only after the body has ended, or never.
class Thread {
public:
    /// `name` may be null or empty.
    explicit Thread(const char* name);
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// The thread's body; receives the object itself.
    virtual void threadLoop(Thread* self) = 0;

    /// Makes the OS thread. False when there is one already or it could not be made.
    virtual bool start();

    /// Does not wait for the OS thread.
    virtual ~Thread();

    /// True once `start()` has succeeded.
    bool isValid();

    /// The OS thread's entry function; `self` is the `Thread`.
    static void* threadWrapper(void* self);

private:
    enum RunState { Starting = 0, BodyRunning = 1, NotRunning = 4 };

    Mutex m_lock;
    int m_runState = NotRunning;
    Condition m_signal;
    std::string m_name;
    bool m_valid = false;
};

} // namespace System
