#include "runtime/Mutex.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/PthreadCalls.h"
#include "support/Rows.h"
#include "support/Waiting.h"

using System::Lock;
using System::Mutex;

TEST(MutexTest, TypeZeroIsANormalMutexAndAnyOtherARecursiveOne) {
    const Rows<int, int> rows = {
        {0, PTHREAD_MUTEX_NORMAL}, {1, PTHREAD_MUTEX_RECURSIVE}, {2, PTHREAD_MUTEX_RECURSIVE}};
    for (const auto& [type, expected] : rows) {
        SCOPED_TRACE(type);
        PthreadCalls calls;
        const Mutex mutex(static_cast<Mutex::Type>(type));
        EXPECT_TRUE(mutex.isValid());
        EXPECT_EQ(calls.mutexType, expected);
    }
}

TEST(MutexTest, LocksAndUnlocks) {
    Mutex mutex(Mutex::Normal);
    EXPECT_TRUE(mutex.lock());
    EXPECT_TRUE(mutex.unlock());
    EXPECT_TRUE(mutex.lock());
    EXPECT_TRUE(mutex.unlock());
}

TEST(MutexTest, ARecursiveMutexIsLockedMoreThanOnceByOneThread) {
    Mutex mutex(Mutex::Recursive);
    EXPECT_TRUE(mutex.lock());
    EXPECT_TRUE(mutex.lock());
    EXPECT_TRUE(mutex.unlock());
    EXPECT_TRUE(mutex.unlock());
}

TEST(MutexTest, OneThatCouldNotBeInitialisedStaysInert) {
    for (const char* step :
         {"pthread_mutexattr_init", "pthread_mutexattr_settype", "pthread_mutex_init"}) {
        SCOPED_TRACE(step);
        PthreadCalls calls;
        calls.fail(step);
        Mutex mutex(Mutex::Normal);
        EXPECT_EQ(calls.count(step), 1);
        EXPECT_FALSE(mutex.isValid());
        EXPECT_FALSE(mutex.lock());
        EXPECT_FALSE(mutex.unlock());
    }
}

TEST(MutexTest, TellsWhetherTheSystemCallSucceeded) {
    PthreadCalls calls;
    Mutex mutex(Mutex::Normal);
    calls.fail("pthread_mutex_lock");
    const bool locked = mutex.lock();
    calls.fail("pthread_mutex_unlock");
    const bool unlocked = mutex.unlock();
    calls.failNothing();
    EXPECT_FALSE(locked);
    EXPECT_FALSE(unlocked);
}

TEST(MutexTest, KeepsThreadsApart) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 5000;
    Mutex mutex(Mutex::Normal);
    int counter = 0; // not atomic on purpose
    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; ++index)
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                const Lock lock(mutex);
                ++counter;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counter, kThreads * kRounds);
}

TEST(MutexTest, AScopeHoldsItToItsEnd) {
    Mutex mutex(Mutex::Normal);
    std::atomic<bool> locked{false};
    std::thread other;
    {
        const Lock lock(mutex);
        other = std::thread([&] {
            mutex.lock();
            locked = true;
            mutex.unlock();
        });
        EXPECT_FALSE(eventually([&] { return locked.load(); }, std::chrono::milliseconds(20)));
    }
    EXPECT_TRUE(eventually([&] { return locked.load(); }));
    other.join();
}
