#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include "wire/Descriptor.h"

namespace headunit {

class EventLoop;

using EventClock = std::chrono::steady_clock;

/// Something that an event loop waits for: a descriptor, a time, or both. It belongs to its loop from
/// its construction to its destruction, both of which happen on the loop's thread or while the loop does
/// not run; all calls come from the loop's thread. Events may be reported that are no longer true, so
/// descriptors are non-blocking. An implementation must not destroy itself in a call.
class EventSource {
public:
    explicit EventSource(EventLoop& loop);
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;
    virtual ~EventSource();

    /// What to poll in the next round; negative for nothing.
    virtual int descriptor() const { return -1; }

    /// The events of poll(2) to wait for in the next round.
    virtual short awaitedEvents() const { return 0; }

    /// The descriptor reports these events of poll(2).
    virtual void onEvents(short /*events*/) {}

    /// When onDue() is to be called, if at all.
    virtual std::optional<EventClock::time_point> due() const { return std::nullopt; }

    /// The due time has come. Must move it.
    virtual void onDue() {}

private:
    EventLoop& m_loop;
};

/// Calls back once at a time that can be moved.
class Timer : public EventSource {
public:
    Timer(EventLoop& loop, std::function<void()> expired);

    void start(EventClock::time_point due) { m_due = due; }
    void stop() { m_due.reset(); }

    std::optional<EventClock::time_point> due() const override { return m_due; }
    void onDue() override;

private:
    std::function<void()> m_expired;
    std::optional<EventClock::time_point> m_due;
};

/// Serves its sources on the one thread that calls run(). It sleeps in poll(2) while nothing happens.
/// What has become due at once is called in the order of the times.
class EventLoop {
public:
    /// Throws UnitError when the system refuses a descriptor.
    EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    /// Blocks and serves until stop() is called.
    void run();

    /// Lets run() return, now or when it is called. From any thread.
    void stop();

private:
    friend class EventSource;

    bool has(const EventSource* source) const;
    int waitTime() const;
    void callDue();

    std::vector<EventSource*> m_sources; ///< not owned
    System::Descriptor m_stop;           ///< readable once run() is to return
};

} // namespace headunit
