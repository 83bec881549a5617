#include "runtime/StatedThread.h"

StatedThread::StatedThread() : Thread("StatedThread"), m_stateLock(System::Mutex::Normal) {
    setState(Created, false);
}

bool StatedThread::startOrDie() {
    const bool isStarted = start();
    if (!isStarted && !isValid())
        setState(Dead, false);
    return isStarted;
}

void StatedThread::setState(LState state, bool force) {
    const System::Lock lock(m_stateLock);
    if (!force && state <= m_state)
        return;
    m_state = state;
    // Still under the lock: the waiter may delete this object as soon as it sees the new state.
    m_stateChanged.signal();
}

StatedThread::LState StatedThread::getState() {
    const System::Lock lock(m_stateLock);
    return m_state;
}

void StatedThread::waitForDead() {
    const System::Lock lock(m_stateLock);
    while (m_state != Dead)
        m_stateChanged.wait(m_stateLock);
}
