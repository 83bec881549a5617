#include "frontends/CommandSender.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "support/LineTexts.h"
#include "support/Lines.h"
#include "support/Pauses.h"
#include "support/SocketPair.h"
#include "support/SystemCalls.h"
#include "support/Waiting.h"

namespace {

/// More than a socket takes.
const std::string kLarge(std::size_t{8} << 20, 'x');

} // namespace

TEST(CommandSenderTest, FramesEachText) {
    for (const std::string& text : kTexts) {
        SCOPED_TRACE(::testing::PrintToString(text));
        const SocketPair sockets;
        CommandSender sender(sockets.ours.get());
        std::string copy = text;
        sender.asyncSend(copy);
        EXPECT_EQ(sockets.receive(answer(text).size()), answer(text));
        EXPECT_FALSE(sockets.hasSomething());
        sender.answer(text);
        EXPECT_EQ(sockets.receive(answer(text).size()), answer(text));
        EXPECT_FALSE(sockets.hasSomething());
    }
}

TEST(CommandSenderTest, KeepsTextsInOrder) {
    const SocketPair sockets;
    CommandSender sender(sockets.ours.get());
    for (std::string text : {"one", "two"})
        sender.asyncSend(text);
    sender.answer("three");
    const std::string expected = answer("one") + answer("two") + answer("three");
    EXPECT_EQ(sockets.receive(expected.size()), expected);
}

TEST(CommandSenderTest, DropsBinaryFrames) {
    const SocketPair sockets;
    CommandSender sender(sockets.ours.get());
    std::vector<unsigned char> frame = {5, 'd', 'a', 'b', 'c'};
    sender.asyncSend(frame);
    EXPECT_FALSE(sockets.hasSomething());
    sender.answer("");
    EXPECT_EQ(sockets.receive(answer("").size()), answer(""));
    EXPECT_FALSE(sockets.hasSomething());
    EXPECT_EQ(frame.size(), 5u);
}

TEST(CommandSenderTest, WhatTheSystemHasNoRoomForComesAheadOfTheAnswer) {
    const SocketPair sockets;
    CommandSender sender(sockets.ours.get());
    const std::string expected = answer("reason") + answer("answer");
    Pauses pauses;
    SystemCalls::failSends(1, ENOBUFS);
    std::string reason = "reason";
    sender.asyncSend(reason);
    EXPECT_TRUE(pauses.take().empty()) << "a command does not wait";
    sender.answer("answer");
    EXPECT_EQ(sockets.receive(expected.size()), expected);
}

TEST(CommandSenderTest, NeverWaitsForAPeerThatDoesNotRead) {
    const SocketPair sockets;
    CommandSender sender(sockets.ours.get());
    const std::string expected = answer(kLarge) + answer("behind it") + answer("answer");
    std::string large = kLarge;
    std::string small = "behind it";
    sender.asyncSend(large); // would hang here
    sender.asyncSend(small);
    std::atomic<bool> answered{false};
    std::thread answerer([&] {
        sender.answer("answer");
        answered = true;
    });
    EXPECT_FALSE(eventually([&] { return answered.load(); }, std::chrono::milliseconds(10)));
    EXPECT_TRUE(sockets.receive(expected.size()) == expected);
    answerer.join();
}

TEST(CommandSenderTest, SendsNoMoreThanALittleToAPeerThatReadsOnMeanwhile) {
    const SocketPair sockets;
    CommandSender sender(sockets.ours.get());
    std::atomic<bool> sent{false};
    std::atomic<std::size_t> received{0};
    std::thread reader([&] {
        // Reads on for as long as there is anything, and once more when no more can come.
        for (bool last = false; !last;) {
            last = sent;
            while (sockets.hasSomething())
                received += sockets.receive(1).size();
        }
    });
    std::string large = kLarge;
    sender.asyncSend(large);
    sent = true;
    reader.join();
    EXPECT_GT(received, 0u);
    EXPECT_LE(received, std::size_t{64} << 10);
}

TEST(CommandSenderTest, APeerThatHasGoneEndsNothingButTheSending) {
    static volatile sig_atomic_t raised = 0;
    const auto before = ::signal(SIGPIPE, [](int) { raised = 1; });
    SocketPair sockets;
    sockets.close();
    CommandSender sender(sockets.ours.get());
    for (std::string text : {"nobody reads this", "nor this"}) {
        sender.asyncSend(text);
        sender.answer("answer");
    }
    ::signal(SIGPIPE, before);
    EXPECT_EQ(raised, 0);
}

TEST(CommandSenderTest, APeerThatGoesWhileItIsWaitedForEndsTheWait) {
    SocketPair sockets;
    CommandSender sender(sockets.ours.get());
    std::atomic<bool> answered{false};
    std::thread answerer([&] {
        sender.answer(kLarge);
        answered = true;
    });
    sockets.close();
    EXPECT_TRUE(eventually([&] { return answered.load(); }));
    answerer.join();
}

TEST(CommandSenderTest, LeavesTheSocketOpen) {
    const SocketPair sockets;
    { CommandSender sender(sockets.ours.get()); }
    std::string text = "still there";
    CommandSender(sockets.ours.get()).asyncSend(text);
    const std::string expected = answer("still there");
    EXPECT_EQ(sockets.receive(expected.size()), expected);
}
