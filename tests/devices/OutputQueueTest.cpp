#include "devices/OutputQueue.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string takeAll(OutputQueue& queue, std::size_t atATime) {
    std::string bytes;
    while (!queue.isEmpty()) {
        const std::string_view next = queue.next().substr(0, atATime);
        bytes += next;
        queue.take(next.size());
    }
    return bytes;
}

} // namespace

TEST(OutputQueueTest, IsEmptyAtFirst) {
    const OutputQueue queue;
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(queue.size(), 0U);
    EXPECT_EQ(queue.next(), "");
}

TEST(OutputQueueTest, GivesTheBytesInTheirOrderInWhateverSteps) {
    for (std::size_t step = 1; step < 8; ++step) {
        OutputQueue queue;
        queue.append("abc");
        queue.append("");
        queue.append("defgh");
        EXPECT_EQ(queue.size(), 8U);
        EXPECT_EQ(takeAll(queue, step), "abcdefgh") << step;
        EXPECT_EQ(queue.size(), 0U);
    }
}

TEST(OutputQueueTest, NothingAppendedIsNothingWaiting) {
    OutputQueue queue;
    queue.append("");
    EXPECT_TRUE(queue.isEmpty());
}

TEST(OutputQueueTest, TellsWhenOnesOwnBytesAreThrough) {
    OutputQueue queue;
    queue.append("one");
    const auto end = queue.appended();
    queue.append("two");
    queue.take(2);
    EXPECT_LT(queue.taken(), end);
    queue.take(1);
    EXPECT_EQ(queue.taken(), end);
    EXPECT_EQ(queue.next(), "two");
    EXPECT_EQ(queue.size(), 3U);
}

TEST(OutputQueueTest, WhatIsDroppedCountsAsThrough) {
    OutputQueue queue;
    queue.append("abc");
    queue.take(1);
    queue.clear();
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(queue.taken(), queue.appended());
    queue.append("de");
    EXPECT_EQ(takeAll(queue, 2), "de");
}
