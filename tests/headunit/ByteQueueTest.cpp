#include "serial/ByteQueue.h"

#include <gtest/gtest.h>

namespace headunit {
namespace {

TEST(ByteQueue, KeepsTheOrderAndTheNumberOfItsBytes) {
    ByteQueue queue(8);
    EXPECT_TRUE(queue.empty());
    EXPECT_TRUE(queue.push("abc"));
    EXPECT_TRUE(queue.push(std::string_view("\0d", 2)));
    EXPECT_EQ(queue.room(), 3u);
    EXPECT_EQ(queue.waiting(), std::string_view("abc\0d", 5));
    queue.drop(2);
    EXPECT_EQ(queue.waiting(), std::string_view("c\0d", 3));
    EXPECT_EQ(queue.room(), 5u);
}

TEST(ByteQueue, TakesAllOrNothing) {
    ByteQueue queue(4);
    EXPECT_TRUE(queue.push("abcd"));
    EXPECT_FALSE(queue.push("e"));
    queue.drop(1);
    EXPECT_FALSE(queue.push("ef"));
    EXPECT_EQ(queue.waiting(), "bcd");
    EXPECT_TRUE(queue.push("e"));
    EXPECT_EQ(queue.waiting(), "bcde");
}

TEST(ByteQueue, LosesNothingOverManyRounds) {
    ByteQueue queue(10);
    std::string in, out;
    for (int round = 0; round < 1000; ++round) {
        const std::string piece(static_cast<std::size_t>(round % 7), static_cast<char>(round));
        if (queue.push(piece))
            in += piece;
        const std::string_view waiting = queue.waiting().substr(0, static_cast<std::size_t>(round % 5));
        out += waiting;
        queue.drop(waiting.size());
    }
    out += queue.waiting();
    EXPECT_GT(in.size(), 1000u);
    EXPECT_EQ(out, in);
}

TEST(ByteQueue, ForgetsEverythingWhenCleared) {
    ByteQueue queue(4);
    queue.push("abc");
    queue.drop(1);
    queue.clear();
    EXPECT_TRUE(queue.empty());
    EXPECT_EQ(queue.room(), 4u);
}

} // namespace
} // namespace headunit
