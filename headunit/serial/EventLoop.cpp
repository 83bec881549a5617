#include "serial/EventLoop.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <limits>
#include <utility>

#include "unit/UnitError.h"

namespace headunit {

EventSource::EventSource(EventLoop& loop) : m_loop(loop) {
    m_loop.m_sources.push_back(this);
}

EventSource::~EventSource() {
    auto& sources = m_loop.m_sources;
    sources.erase(std::find(sources.begin(), sources.end(), this));
}

Timer::Timer(EventLoop& loop, std::function<void()> expired)
    : EventSource(loop), m_expired(std::move(expired)) {}

void Timer::onDue() {
    stop();
    m_expired();
}

EventLoop::EventLoop() : m_stop(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!m_stop)
        throw systemError("cannot make an event descriptor", errno);
}

void EventLoop::run() {
    std::vector<pollfd> polled;
    for (;;) {
        // A copy: what is called may add and remove sources.
        const std::vector<EventSource*> sources = m_sources;
        polled.clear();
        for (const EventSource* source : sources)
            polled.push_back({source->descriptor(), source->awaitedEvents(), 0});
        polled.push_back({m_stop.get(), POLLIN, 0});
        if (::poll(polled.data(), polled.size(), waitTime()) < 0)
            continue; // interrupted, or out of memory for a moment
        if (polled.back().revents != 0)
            return;
        for (std::size_t i = 0; i < sources.size(); ++i)
            if (polled[i].revents != 0 && has(sources[i]))
                sources[i]->onEvents(polled[i].revents);
        callDue();
    }
}

void EventLoop::stop() {
    ::eventfd_write(m_stop.get(), 1);
}

bool EventLoop::has(const EventSource* source) const {
    return std::find(m_sources.begin(), m_sources.end(), source) != m_sources.end();
}

/// Milliseconds until the earliest due time, as poll(2) takes them.
int EventLoop::waitTime() const {
    std::optional<EventClock::time_point> earliest;
    for (const EventSource* source : m_sources)
        if (const auto due = source->due(); due && (!earliest || *due < *earliest))
            earliest = due;
    if (!earliest)
        return -1;
    // Rounded up, or the last fraction of a millisecond would be spent in a busy loop.
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*earliest - EventClock::now());
    constexpr decltype(wait.count()) kLongest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp<decltype(wait.count())>(wait.count(), 0, kLongest));
}

void EventLoop::callDue() {
    const EventClock::time_point now = EventClock::now();
    const auto isDue = [now](const EventSource* source) {
        return source->due().value_or(EventClock::time_point::max()) <= now;
    };
    std::vector<EventSource*> sources;
    std::copy_if(m_sources.begin(), m_sources.end(), std::back_inserter(sources), isDue);
    std::stable_sort(
        sources.begin(), sources.end(),
        [](const EventSource* left, const EventSource* right) { return *left->due() < *right->due(); });
    for (EventSource* source : sources)
        if (has(source) && isDue(source))
            source->onDue();
}

} // namespace headunit
