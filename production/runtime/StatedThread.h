#pragma once

#include "runtime/Condition.h"
#include "runtime/Mutex.h"
#include "runtime/Thread.h"

/// A thread with a life-cycle state that other threads can wait on. Its body moves the state forward and
/// sets `Dead` as its last action.
class StatedThread : public System::Thread {
public:
    enum LState {
        Created = 0,   ///< set by the constructor
        Started = 1,   ///< the body runs
        Running = 2,   ///< the body has prepared what it needs
        Connected = 3, ///< the serial front end has reached its peer
        Stopping = 4,  ///< the body is asked to leave its loop
        Dead = 5       ///< the body has ended
    };

    StatedThread();

    /// As `start()`; one that could not be made is `Dead`, so that nobody waits for its end in vain.
    bool startOrDie();

    /// Unless forced, a state only moves forward: an equal or smaller one changes nothing. Any thread.
    void setState(LState state, bool force);
    /// Any thread.
    LState getState();
    /// Blocks until the state is `Dead`. One waiter at a time.
    void waitForDead();

private:
    LState m_state = Created;
    System::Condition m_stateChanged;
    System::Mutex m_stateLock;
};
