#pragma once

#include <atomic>

/// A thread that another one watches falling asleep.
class SleepingThread {
public:
    /// Called by the thread, before it does what will make it sleep.
    void isMe();

    /// Waits until it sleeps in the kernel and goes on doing so. False when the patience is exhausted.
    bool fallsAsleep() const;

private:
    std::atomic<int> m_id{0};
};
