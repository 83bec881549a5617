#include "runtime/Thread.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <memory>
#include <string>

#include "support/PthreadCalls.h"
#include "support/Waiting.h"

using System::Thread;

namespace {

/// Runs until it is let go, and tells what it saw. Its ends are observed from outside, since nobody can
/// join it: the flags outlive it.
class Worker : public Thread {
public:
    struct Seen {
        std::atomic<int> bodies{0};
        std::atomic<Thread*> self{nullptr};
        std::atomic<bool> mayEnd{false};
        std::atomic<bool> ended{false};
        std::string name;
    };

    Worker(const char* name, std::shared_ptr<Seen> seen) : Thread(name), m_seen(std::move(seen)) {}

    void threadLoop(Thread* self) override {
        const std::shared_ptr<Seen> seen = m_seen;
        char name[64] = {};
        pthread_getname_np(pthread_self(), name, sizeof name);
        seen->name = name;
        seen->self = self;
        ++seen->bodies;
        while (!seen->mayEnd)
            sched_yield();
        seen->ended = true;
    }

private:
    std::shared_ptr<Seen> m_seen;
};

class ThreadTest : public ::testing::Test {
protected:
    void TearDown() override {
        m_seen->mayEnd = true;
        const bool ended = eventually([this] { return m_seen->bodies == 0 || m_seen->ended; });
        EXPECT_TRUE(ended);
    }

    bool bodyRuns() {
        return eventually([this] { return m_seen->bodies > 0; });
    }

    std::shared_ptr<Worker::Seen> m_seen = std::make_shared<Worker::Seen>();
    PthreadCalls m_calls;
};

} // namespace

TEST_F(ThreadTest, IsNotValidBeforeItWasStarted) {
    Worker worker("worker", m_seen);
    EXPECT_FALSE(worker.isValid());
    EXPECT_EQ(m_calls.count("pthread_create"), 0);
}

TEST_F(ThreadTest, RunsItsBodyWithItself) {
    Worker worker("worker", m_seen);
    EXPECT_TRUE(worker.start());
    EXPECT_TRUE(worker.isValid());
    ASSERT_TRUE(bodyRuns());
    EXPECT_EQ(m_seen->self, &worker);
    EXPECT_EQ(m_calls.argument, &worker);
    EXPECT_EQ(m_calls.entry, &Thread::threadWrapper);
}

TEST_F(ThreadTest, IsMadeDetachedWithASmallGuardedStack) {
    Worker worker("worker", m_seen);
    ASSERT_TRUE(worker.start());
    EXPECT_EQ(m_calls.detachState, PTHREAD_CREATE_DETACHED);
    EXPECT_EQ(m_calls.guardBytes, 16384u);
    EXPECT_EQ(m_calls.stackBytes, 262144u);
    ASSERT_TRUE(bodyRuns());
}

TEST_F(ThreadTest, ASecondStartMakesNothing) {
    Worker worker("worker", m_seen);
    EXPECT_TRUE(worker.start());
    EXPECT_FALSE(worker.start());
    ASSERT_TRUE(bodyRuns());
    EXPECT_FALSE(worker.start());
    m_seen->mayEnd = true;
    ASSERT_TRUE(eventually([this] { return m_seen->ended.load(); }));
    EXPECT_FALSE(worker.start()) << "not even after the body has ended";
    EXPECT_EQ(m_calls.count("pthread_create"), 1);
    EXPECT_EQ(m_seen->bodies, 1);
}

TEST_F(ThreadTest, GivesItsNameToTheThread) {
    Worker worker("worker", m_seen);
    ASSERT_TRUE(worker.start());
    ASSERT_TRUE(bodyRuns());
    EXPECT_EQ(m_seen->name, "worker");
    EXPECT_EQ(m_calls.count("pthread_setname_np"), 1);
}

TEST_F(ThreadTest, WithoutANameNoneIsGiven) {
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        SCOPED_TRACE(name == nullptr ? "null" : "empty");
        m_seen = std::make_shared<Worker::Seen>();
        Worker worker(name, m_seen);
        EXPECT_TRUE(worker.start());
        ASSERT_TRUE(bodyRuns());
        EXPECT_EQ(m_calls.count("pthread_setname_np"), 0);
        m_seen->mayEnd = true;
        ASSERT_TRUE(eventually([this] { return m_seen->ended.load(); }));
    }
}

TEST_F(ThreadTest, ANameThatTheSystemRefusesIsNoReasonNotToRun) {
    m_calls.fail("pthread_setname_np");
    Worker worker("worker", m_seen);
    EXPECT_TRUE(worker.start());
    EXPECT_TRUE(bodyRuns());
}

TEST_F(ThreadTest, CanBeStartedAgainAfterItCouldNot) {
    for (const char* step : {"pthread_attr_setdetachstate", "pthread_attr_setguardsize",
                             "pthread_attr_setstacksize", "pthread_create"}) {
        SCOPED_TRACE(step);
        m_seen = std::make_shared<Worker::Seen>();
        Worker worker("worker", m_seen);
        m_calls.fail(step);
        EXPECT_FALSE(worker.start());
        EXPECT_FALSE(worker.isValid());
        EXPECT_EQ(m_seen->bodies, 0);
        m_calls.failNothing();
        EXPECT_TRUE(worker.start());
        ASSERT_TRUE(bodyRuns());
        m_seen->mayEnd = true;
        ASSERT_TRUE(eventually([this] { return m_seen->ended.load(); }));
    }
}

TEST_F(ThreadTest, DestroyingTheObjectDoesNotWaitForTheBody) {
    auto worker = std::make_unique<Worker>("worker", m_seen);
    ASSERT_TRUE(worker->start());
    ASSERT_TRUE(bodyRuns());
    worker.reset();
    EXPECT_FALSE(m_seen->ended);
}

TEST_F(ThreadTest, CanBeDestroyedThroughItsBase) {
    std::unique_ptr<Thread> worker = std::make_unique<Worker>("worker", m_seen);
    worker.reset();
    EXPECT_EQ(m_seen.use_count(), 1) << "the derived part is gone, too";
}
