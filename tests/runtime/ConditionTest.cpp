#include "runtime/Condition.h"

#include <gtest/gtest.h>
#include <time.h>

#include <chrono>
#include <thread>
#include <type_traits>

#include "support/PthreadCalls.h"

using System::Condition;
using System::Lock;
using System::Mutex;

static_assert(std::has_virtual_destructor_v<Condition>);

TEST(ConditionTest, RunsOnTheMonotonicClock) {
    PthreadCalls calls;
    const Condition condition;
    EXPECT_TRUE(condition.isValid());
    EXPECT_EQ(calls.clock, CLOCK_MONOTONIC);
}

TEST(ConditionTest, SignallingNobodySucceeds) {
    Condition condition;
    EXPECT_TRUE(condition.signal());
}

TEST(ConditionTest, OneThatCouldNotBeInitialisedStaysInert) {
    for (const char* step :
         {"pthread_condattr_init", "pthread_condattr_setclock", "pthread_cond_init"}) {
        SCOPED_TRACE(step);
        PthreadCalls calls;
        calls.fail(step);
        Condition condition;
        Mutex mutex(Mutex::Normal);
        EXPECT_EQ(calls.count(step), 1);
        EXPECT_FALSE(condition.isValid());
        EXPECT_FALSE(condition.signal());
        const Lock lock(mutex);
        EXPECT_FALSE(condition.wait(mutex));
    }
}

TEST(ConditionTest, WaitingWithAnInvalidMutexFailsAtOnce) {
    PthreadCalls calls;
    calls.fail("pthread_mutex_init");
    Mutex mutex(Mutex::Normal);
    Condition condition;
    EXPECT_FALSE(condition.wait(mutex));
}

TEST(ConditionTest, TellsWhetherTheSystemCallSucceeded) {
    PthreadCalls calls;
    Condition condition;
    Mutex mutex(Mutex::Normal);
    const Lock lock(mutex);
    calls.fail("pthread_cond_signal");
    EXPECT_FALSE(condition.signal());
    calls.fail("pthread_cond_wait");
    EXPECT_FALSE(condition.wait(mutex));
}

TEST(ConditionTest, WaitingGivesTheMutexBackAndTakesItAgain) {
    Mutex mutex(Mutex::Normal);
    Condition condition;
    bool waiting = false;
    bool ready = false;
    bool waited = false;
    std::thread waiter([&] {
        const Lock lock(mutex);
        waiting = true;
        while (!ready)
            waited = condition.wait(mutex);
        ready = false;
    });
    for (bool seen = false; !seen;) {
        // That this lock is ever granted while the other waits is what is being tested.
        const Lock lock(mutex);
        seen = waiting;
        ready = seen;
    }
    EXPECT_TRUE(condition.signal());
    waiter.join();
    EXPECT_TRUE(waited);
    EXPECT_FALSE(ready);
}

TEST(ConditionTest, ASignalWakesOneWaiter) {
    Mutex mutex(Mutex::Normal);
    Condition condition;
    int waiting = 0;
    int tickets = 0;
    const auto takeTicket = [&] {
        const Lock lock(mutex);
        ++waiting;
        while (tickets == 0)
            condition.wait(mutex);
        --tickets;
    };
    std::thread first(takeTicket);
    std::thread second(takeTicket);
    for (bool both = false; !both;) {
        const Lock lock(mutex);
        both = waiting == 2;
    }
    for (int ticket = 0; ticket < 2; ++ticket) {
        const Lock lock(mutex);
        ++tickets;
        EXPECT_TRUE(condition.signal());
    }
    first.join();
    second.join();
    EXPECT_EQ(tickets, 0);
}

TEST(ConditionTest, AWaitCanHaveALimit) {
    constexpr std::chrono::milliseconds kLimit{1020};
    Mutex mutex(Mutex::Normal);
    Condition condition;
    const Lock lock(mutex);
    const auto before = std::chrono::steady_clock::now();
    while (condition.waitFor(mutex, kLimit)) {
    }
    EXPECT_GE(std::chrono::steady_clock::now() - before, kLimit);
}
