#include "frontends/NetListenerAsycSend.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <thread>
#include <vector>

#include "support/LineTexts.h"
#include "support/Lines.h"
#include "support/Pauses.h"
#include "support/SocketPair.h"
#include "support/SystemCalls.h"
#include "support/Waiting.h"

namespace {

constexpr std::size_t kMoreThanASocketTakes = std::size_t{8} << 20;

} // namespace

TEST(NetListenerAsycSendTest, FramesEachText) {
    for (const std::string& text : kTexts) {
        SCOPED_TRACE(::testing::PrintToString(text));
        const SocketPair sockets;
        NetListenerAsycSend sender(sockets.ours.get());
        std::string copy = text;
        sender.asyncSend(copy);
        EXPECT_EQ(sockets.receive(answer(text).size()), answer(text));
        EXPECT_FALSE(sockets.hasSomething());
        EXPECT_EQ(copy, text);
    }
}

TEST(NetListenerAsycSendTest, SendsAllOfALongText) {
    const SocketPair sockets;
    NetListenerAsycSend sender(sockets.ours.get());
    std::string large(kMoreThanASocketTakes, 'x');
    std::atomic<bool> sent{false};
    std::thread writer([&] {
        sender.asyncSend(large);
        sent = true;
    });
    EXPECT_FALSE(eventually([&] { return sent.load(); }, std::chrono::milliseconds(10)));
    EXPECT_TRUE(sockets.receive(answer(large).size()) == answer(large));
    writer.join();
}

TEST(NetListenerAsycSendTest, DropsBinaryFrames) {
    const SocketPair sockets;
    NetListenerAsycSend sender(sockets.ours.get());
    std::vector<unsigned char> frame = {5, 'd', 'a', 'b', 'c'};
    sender.asyncSend(frame);
    EXPECT_FALSE(sockets.hasSomething());
    EXPECT_EQ(frame.size(), 5u);
}

TEST(NetListenerAsycSendTest, APeerThatHasGoneEndsNothingButTheSending) {
    SocketPair sockets;
    sockets.close();
    NetListenerAsycSend sender(sockets.ours.get());
    std::string text = "nobody reads this";
    sender.asyncSend(text); // a signal would end this test
    sender.asyncSend(text);
}

TEST(NetListenerAsycSendTest, RoomThatTheSystemHasNotIsWaitedFor) {
    for (const int error : {ENOBUFS, ENOMEM}) {
        const SocketPair sockets;
        NetListenerAsycSend sender(sockets.ours.get());
        Pauses pauses;
        SystemCalls::failSends(2, error);
        std::string text = "has its time";
        sender.asyncSend(text);
        EXPECT_EQ(sockets.receive(answer(text).size()), answer(text));
        EXPECT_EQ(pauses.take(), (std::vector<int>{50, 50}));
    }
}

TEST(NetListenerAsycSendTest, LeavesTheSocketOpen) {
    const SocketPair sockets;
    { NetListenerAsycSend sender(sockets.ours.get()); }
    std::string text = "still there";
    NetListenerAsycSend(sockets.ours.get()).asyncSend(text);
    EXPECT_EQ(sockets.receive(answer(text).size()), answer(text));
}

TEST(NetListenerAsycSendTest, IsNoThreadAndNoSerialChannel) {
    NetListenerAsycSend sender(-1);
    sender.threadLoop(&sender); // returns
    EXPECT_EQ(sender.getState(), StatedThread::Created);
    EXPECT_EQ(sender.getDeviceListNumber(), 0);
}
