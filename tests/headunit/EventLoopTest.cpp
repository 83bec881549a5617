#include "serial/EventLoop.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <time.h>

#include <memory>
#include <thread>

namespace headunit {
namespace {

using std::chrono::milliseconds;

/// A readable descriptor that is counted down by one in every call.
class Counter : public EventSource {
public:
    Counter(EventLoop& loop, unsigned start, std::function<void()> zero)
        : EventSource(loop),
          m_descriptor(::eventfd(start, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE)),
          m_left(start),
          m_zero(std::move(zero)) {}

    int descriptor() const override { return m_descriptor.get(); }
    short awaitedEvents() const override { return POLLIN; }
    void onEvents(short events) override {
        EXPECT_EQ(events, POLLIN);
        eventfd_t one = 0;
        ::eventfd_read(m_descriptor.get(), &one);
        if (--m_left == 0)
            m_zero();
    }

private:
    System::Descriptor m_descriptor;
    unsigned m_left;
    std::function<void()> m_zero;
};

TEST(EventLoop, ServesASourceAsLongAsItHasEvents) {
    EventLoop loop;
    bool done = false;
    const Counter counter(loop, 3, [&] {
        done = true;
        loop.stop();
    });
    loop.run();
    EXPECT_TRUE(done);
}

TEST(EventLoop, StopsWhenItWasAskedBeforeItRan) {
    EventLoop loop;
    loop.stop();
    loop.run();
    SUCCEED() << "run() has returned";
}

TEST(EventLoop, IsStoppedFromAnotherThread) {
    EventLoop loop;
    std::thread other([&] { loop.stop(); });
    loop.run();
    other.join();
}

TEST(EventLoop, CallsTimersOnceInTheOrderOfTheirTimes) {
    EventLoop loop;
    std::string order;
    Timer last(loop, [&] {
        order += 'c';
        loop.stop();
    });
    Timer first(loop, [&] { order += 'a'; });
    Timer second(loop, [&] { order += 'b'; });
    Timer never(loop, [&] { order += 'x'; });
    const EventClock::time_point start = EventClock::now();
    last.start(start + milliseconds(60));
    first.start(start + milliseconds(1));
    second.start(start + milliseconds(30));
    never.start(start);
    never.stop();
    loop.run();
    EXPECT_EQ(order, "abc");
    EXPECT_GE(EventClock::now() - start, milliseconds(60));
}

TEST(EventLoop, CallsWhatIsLateInTheOrderOfTheTimesToo) {
    EventLoop loop;
    std::string order;
    Timer last(loop, [&] {
        order += 'c';
        loop.stop();
    });
    Timer second(loop, [&] { order += 'b'; });
    Timer first(loop, [&] { order += 'a'; });
    const EventClock::time_point now = EventClock::now();
    last.start(now - milliseconds(1));
    second.start(now - milliseconds(2));
    first.start(now - milliseconds(3));
    loop.run();
    EXPECT_EQ(order, "abc");
}

TEST(EventLoop, LetsASourceRemoveAnother) {
    EventLoop loop;
    std::unique_ptr<Counter> victim;
    const Counter killer(loop, 1, [&] {
        victim.reset();
        loop.stop();
    });
    victim = std::make_unique<Counter>(loop, 1, [] { FAIL() << "called after its end"; });
    loop.run();
    EXPECT_EQ(victim, nullptr);
}

TEST(EventLoop, TakesNoProcessorTimeWhileItWaits) {
    EventLoop loop;
    Timer end(loop, [&] { loop.stop(); });
    end.start(EventClock::now() + milliseconds(300));
    timespec before{}, after{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &before);
    loop.run();
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &after);
    const auto used = std::chrono::seconds(after.tv_sec - before.tv_sec) +
                      std::chrono::nanoseconds(after.tv_nsec - before.tv_nsec);
    EXPECT_LT(used, milliseconds(100));
}

} // namespace
} // namespace headunit
