// What a read brings, and how long it waits for it.
#include <signal.h>
#include <sys/time.h>

#include <chrono>

#include "support/DriverFixture.h"
#include "support/GuardedBuffer.h"
#include "support/Waiting.h"

using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::Gt;
using ::testing::Le;
using ::testing::SizeIs;

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kUntouched = 4711;

class ReadTest : public DriverFixture {
protected:
    ReadTest() { open(); }

    DeviceResult read(int length, unsigned timeoutMs) {
        return m_driver->read(m_count, m_buffer.data(), length, timeoutMs);
    }

    /// Sends something on the far end just before the driver waits.
    DeviceCalls::Step sending(const std::string& bytes) {
        return DeviceCalls::after([this, bytes] { m_line.send(bytes, static_cast<int>(bytes.size())); });
    }

    std::string received() { return m_buffer.first(m_count); }

    /// That these bytes have come, and nothing beyond them.
    void expectReceived(const std::string& bytes) {
        EXPECT_EQ(m_count, bytes.size());
        EXPECT_EQ(received(), bytes);
        EXPECT_TRUE(m_buffer.isUntouchedBut(m_count));
    }

    GuardedBuffer<16> m_buffer;
    unsigned m_count = kUntouched;
};

} // namespace

TEST_P(ReadTest, WithoutATimeOutItReturnsTheFirstArrival) {
    m_line.send("abc", 3);
    EXPECT_THAT(read(10, 0), isSuccess());
    expectReceived("abc");
    EXPECT_THAT(m_calls.all(), ElementsAre("poll", "read"));
}

TEST_P(ReadTest, WithoutATimeOutItWaitsWithoutLimit) {
    m_calls.script("poll", {sending("x")});
    EXPECT_THAT(read(10, 0), isSuccess());
    EXPECT_EQ(received(), "x");
    EXPECT_THAT(m_calls.pollLimits(), ElementsAre(-1));
}

TEST_P(ReadTest, WithATimeOutItCollectsUntilThereIsEnough) {
    m_line.send("ab", 2);
    m_calls.script("poll", {DeviceCalls::passing(), sending("cd"), sending("ef")});
    EXPECT_THAT(read(6, kLongMs), isSuccess());
    expectReceived("abcdef");
    EXPECT_THAT(m_calls.all(), ElementsAre("poll", "read", "poll", "read", "poll", "read"));
}

TEST_P(ReadTest, TheTimeOutIsCountedAnewForEachChunk) {
    constexpr auto kSpent = std::chrono::milliseconds(1000);
    m_line.send("ab", 2);
    const auto spend = [&] {
        const auto end = Clock::now() + kSpent;
        EXPECT_TRUE(eventually([&] { return Clock::now() >= end; }));
    };
    m_calls.script("poll", {DeviceCalls::after(spend), sending("cd")});
    EXPECT_THAT(read(4, kLongMs), isSuccess());
    EXPECT_EQ(received(), "abcd");
    EXPECT_THAT(m_calls.pollLimits(),
                AllOf(SizeIs(2), Each(AllOf(Gt(static_cast<int>(kLongMs) - 900), Le(60000)))));
}

TEST_P(ReadTest, SilenceIsASuccessWithNothing) {
    const auto begin = Clock::now();
    EXPECT_THAT(read(10, 500), isSuccess());
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(499));
    expectReceived("");
    EXPECT_THAT(m_calls.all(), ElementsAre("poll"));
}

TEST_P(ReadTest, SilenceAfterSomeBytesIsASuccessWithThose) {
    m_line.send("abc", 3);
    EXPECT_THAT(read(10, 100), isSuccess());
    expectReceived("abc");
    EXPECT_THAT(m_calls.all(), ElementsAre("poll", "read", "poll"));
}

TEST_P(ReadTest, ExactlyTheBytesAskedForDoNotWaitForMore) {
    m_line.send("abcd", 4);
    EXPECT_THAT(read(4, kLongMs), isSuccess());
    EXPECT_EQ(received(), "abcd");
    EXPECT_THAT(m_calls.all(), ElementsAre("poll", "read"));
}

TEST_P(ReadTest, WhatWasNotAskedForStaysForTheNextRead) {
    for (const unsigned timeoutMs : {0U, kLongMs}) {
        m_line.send("abcdefgh", 8);
        EXPECT_THAT(read(3, timeoutMs), isSuccess());
        EXPECT_EQ(received(), "abc");
        EXPECT_EQ(m_line.waiting(), 5);
        EXPECT_THAT(read(5, timeoutMs), isSuccess());
        EXPECT_EQ(received(), "defgh");
    }
    EXPECT_TRUE(m_buffer.isUntouchedBut(5));
}

TEST_P(ReadTest, NothingAskedForIsNothingRead) {
    m_line.send("abc", 3);
    for (const unsigned timeoutMs : {0U, kLongMs}) {
        m_count = kUntouched;
        EXPECT_THAT(read(0, timeoutMs), isSuccess());
        EXPECT_EQ(m_count, 0U);
    }
    EXPECT_EQ(m_line.waiting(), 3);
    EXPECT_TRUE(m_buffer.isUntouchedBut(0));
}

TEST_P(ReadTest, NothingAskedForOfASilentLineRunsIntoTheTimeOut) {
    EXPECT_THAT(read(0, 20), isSuccess());
    expectReceived("");
}

TEST_P(ReadTest, TheLimitIsTheTimeOutInMilliseconds) {
    m_line.send("x", 1);
    EXPECT_THAT(read(1, 1), isSuccess());
    EXPECT_THAT(m_calls.pollLimits(), ElementsAre(AllOf(Ge(0), Le(1))));
    m_calls.forget();
    m_line.send("x", 1);
    EXPECT_THAT(read(1, 4294967295), isSuccess());
    EXPECT_THAT(m_calls.pollLimits(), ElementsAre(Gt(2000000000)));
}

TEST_P(ReadTest, AnInterruptionDoesNotEndAWaitWithoutLimit) {
    m_calls.script("poll", {DeviceCalls::failing(EINTR), DeviceCalls::failing(EINTR), sending("x")});
    EXPECT_THAT(read(10, 0), isSuccess());
    EXPECT_EQ(received(), "x");
    EXPECT_THAT(m_calls.pollLimits(), ElementsAre(-1, -1, -1));
}

TEST_P(ReadTest, AnInterruptionNeitherEndsNorProlongsALimitedWait) {
    struct sigaction tick {};
    tick.sa_handler = [](int) {};
    struct sigaction before {};
    ASSERT_EQ(::sigaction(SIGALRM, &tick, &before), 0);
    const itimerval often{{0, 20000}, {0, 20000}};
    ASSERT_EQ(::setitimer(ITIMER_REAL, &often, nullptr), 0);
    const auto begin = Clock::now();
    const DeviceResult result = read(10, 300);
    const auto took = Clock::now() - begin;
    const itimerval never{};
    ::setitimer(ITIMER_REAL, &never, nullptr);
    ::sigaction(SIGALRM, &before, nullptr);
    EXPECT_THAT(result, isSuccess());
    EXPECT_EQ(m_count, 0U);
    EXPECT_GE(took, std::chrono::milliseconds(299));
    const std::vector<int> limits = m_calls.pollLimits();
    EXPECT_GT(limits.size(), 1U) << "no interruption";
    EXPECT_TRUE(std::is_sorted(limits.rbegin(), limits.rend())) << "the wait began anew";
}

TEST_P(ReadTest, AReadThatBringsNothingYetIsTriedAgain) {
    for (const int error : {EAGAIN, EINTR}) {
        for (const unsigned timeoutMs : {0U, kLongMs}) {
            m_calls.forget();
            m_line.send("abc", 3);
            m_calls.failNext("read", error);
            EXPECT_THAT(read(3, timeoutMs), isSuccess());
            EXPECT_EQ(received(), "abc");
            EXPECT_THAT(m_calls.all(), ElementsAre("poll", "read", "poll", "read"));
        }
    }
    EXPECT_TRUE(m_buffer.isUntouchedBut(3));
}

TEST_P(ReadTest, AWaitThatWasToldOfNothingStillRunsIntoItsTimeOut) {
    m_calls.failNext("read", EAGAIN);
    m_calls.script("poll", {DeviceCalls::returning(1)});
    EXPECT_THAT(read(3, 20), isSuccess());
    expectReceived("");
}

TEST_P(ReadTest, ManyBytesArriveInTheirOrder) {
    std::string bytes;
    for (int at = 0; at < 3000; ++at)
        bytes += static_cast<char>(at * 7);
    m_line.send(bytes, 3000);
    std::string all(bytes.size(), '\0');
    EXPECT_THAT(m_driver->read(m_count, all.data(), 3000, kLongMs), isSuccess());
    EXPECT_EQ(m_count, 3000U);
    EXPECT_TRUE(all == bytes);
}

WITH_BOTH_DRIVERS(ReadTest);
