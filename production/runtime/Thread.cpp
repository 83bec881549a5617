#include "runtime/Thread.h"

#include <pthread.h>

#include "platform/ThreadTraits.h"
#include "runtime/ThreadAttributes.h"

namespace System {

Thread::Thread(const char* name) : m_lock(Mutex::Normal), m_name(name == nullptr ? "" : name) {}

Thread::~Thread() {
    const Lock lock(m_lock);
    if (!m_valid)
        return;
    m_runState = NotRunning;
    m_signal.signal();
}

bool Thread::start() {
    const Lock lock(m_lock);
    if (m_valid || m_runState != NotRunning)
        return false;
    const ThreadAttributes attributes;
    if (!attributes.isValid())
        return false;
    m_runState = Starting;
    pthread_t thread;
    if (pthread_create(&thread, attributes.get(), threadWrapper, this) != 0) {
        m_runState = NotRunning;
        return false;
    }
    // The body cannot have ended: it waits for the lock in `threadWrapper`, so the handle is still good.
    if (!m_name.empty())
        nameThread(thread, m_name.c_str());
    m_valid = true;
    return true;
}

bool Thread::isValid() {
    const Lock lock(m_lock);
    return m_valid;
}

void* Thread::threadWrapper(void* self) {
    auto* thread = static_cast<Thread*>(self);
    {
        const Lock lock(thread->m_lock);
        thread->m_runState = BodyRunning;
    }
    thread->threadLoop(thread);
    pthread_exit(nullptr);
}

} // namespace System
