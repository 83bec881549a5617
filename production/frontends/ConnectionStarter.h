#pragma once

#include <deque>

#include "runtime/Condition.h"
#include "runtime/Mutex.h"
#include "runtime/Thread.h"
#include "wire/Descriptor.h"

/// Makes the threads of accepted connections, on a thread of its own: few stations fit into the queue
/// of those that wait to be accepted, so whoever accepts them does nothing else.
class ConnectionStarter : public System::Thread {
public:
    /// The one of the process; it is never destroyed, since its thread runs until the process is gone.
    /// The first call may throw std::bad_alloc.
    static ConnectionStarter& getInstance();

    /// Takes over a connection that waits for its thread. Any thread; waits for nothing but a little
    /// memory where that has run out.
    void add(System::Descriptor connection);

    /// Starts one connection after the other, in the order of their arrival. Where threads or memory
    /// have run out all wait until there are some again; none is turned away.
    void threadLoop(System::Thread* self) override;

private:
    ConnectionStarter();

    bool tryAdd(System::Descriptor& connection);
    System::Descriptor next();

    System::Mutex m_lock; // guards m_waiting
    System::Condition m_added;
    std::deque<System::Descriptor> m_waiting;
};
