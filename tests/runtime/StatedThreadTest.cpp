#include "runtime/StatedThread.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "support/PthreadCalls.h"
#include "support/Waiting.h"

namespace {

using State = StatedThread::LState;

class Inert : public StatedThread {
public:
    void threadLoop(System::Thread*) override {}
};

/// Goes through the life of the daemon's threads.
class Living : public StatedThread {
public:
    void threadLoop(System::Thread*) override {
        char name[64] = {};
        pthread_getname_np(pthread_self(), name, sizeof name);
        threadName = name;
        setState(Started, false);
        setState(Running, false);
        while (getState() <= Connected)
            sched_yield();
        setState(Dead, false);
    }

    std::string threadName;
};

std::string nameOf(State from, State to, bool force) {
    return std::to_string(from) + " to " + std::to_string(to) + (force ? " by force" : "");
}

} // namespace

TEST(StatedThreadTest, IsCreatedFirst) {
    Inert thread;
    EXPECT_EQ(thread.getState(), StatedThread::Created);
    EXPECT_FALSE(thread.isValid());
}

TEST(StatedThreadTest, StatesOnlyMoveForwardUnlessForced) {
    for (int from = StatedThread::Created; from <= StatedThread::Dead; ++from)
        for (int to = StatedThread::Created; to <= StatedThread::Dead; ++to)
            for (const bool force : {false, true}) {
                SCOPED_TRACE(nameOf(static_cast<State>(from), static_cast<State>(to), force));
                Inert thread;
                thread.setState(static_cast<State>(from), true);
                thread.setState(static_cast<State>(to), force);
                EXPECT_EQ(thread.getState(), force || to > from ? to : from);
            }
}

TEST(StatedThreadTest, WaitingForADeadThreadReturnsAtOnce) {
    Inert thread;
    thread.setState(StatedThread::Dead, false);
    thread.waitForDead();
    EXPECT_EQ(thread.getState(), StatedThread::Dead);
}

TEST(StatedThreadTest, WaitsThroughAllOtherStates) {
    Inert thread;
    std::atomic<bool> returned{false};
    std::thread waiter([&] {
        thread.waitForDead();
        returned = true;
    });
    for (const State state : {StatedThread::Started, StatedThread::Running, StatedThread::Connected,
                              StatedThread::Stopping}) {
        thread.setState(state, false);
        EXPECT_FALSE(eventually([&] { return returned.load(); }, std::chrono::milliseconds(5)));
    }
    thread.setState(StatedThread::Dead, false);
    EXPECT_TRUE(eventually([&] { return returned.load(); }));
    waiter.join();
}

TEST(StatedThreadTest, OneThatCannotBeMadeIsDead) {
    PthreadCalls calls;
    calls.fail("pthread_create");
    Living thread;
    EXPECT_FALSE(thread.startOrDie());
    EXPECT_EQ(thread.getState(), StatedThread::Dead);
    thread.waitForDead(); // returns
}

TEST(StatedThreadTest, OneThatRunsDoesNotDieOfAnotherStart) {
    Living thread;
    ASSERT_TRUE(thread.startOrDie());
    EXPECT_FALSE(thread.startOrDie());
    EXPECT_TRUE(eventually([&] { return thread.getState() == StatedThread::Running; }));
    thread.setState(StatedThread::Stopping, false);
    thread.waitForDead();
}

TEST(StatedThreadTest, LivesFromStartToDeathAndMayBeDeletedThen) {
    auto thread = std::make_unique<Living>();
    ASSERT_TRUE(thread->start());
    ASSERT_TRUE(eventually([&] { return thread->getState() == StatedThread::Running; }));
    thread->setState(StatedThread::Stopping, false);
    thread->waitForDead();
    EXPECT_EQ(thread->getState(), StatedThread::Dead);
    EXPECT_EQ(thread->threadName, "StatedThread");
}

TEST(StatedThreadTest, MayBeDeletedAsSoonAsItIsDead) {
    for (int round = 0; round < 200; ++round) {
        auto thread = std::make_unique<Living>();
        ASSERT_TRUE(thread->start());
        thread->setState(StatedThread::Stopping, false);
        thread->waitForDead();
        thread.reset();
    }
}
