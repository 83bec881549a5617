#include "frontends/NetListenerAsycSend.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>
#include <thread>

#include "support/Eventually.h"
#include "support/SocketPair.h"

namespace {

constexpr std::size_t kMoreThanASocketTakes = std::size_t{8} << 20;

std::string framed(const std::string& text) {
    return "\x02#" + text + "\x03\n";
}

} // namespace

TEST(NetListenerAsycSendTest, FramesEachText) {
    const std::string texts[] = {"status ok", "", "Info \"what\"", std::string("a\0b", 3),
                                 "100%s \x02\x03\n"};
    for (const std::string& text : texts) {
        SCOPED_TRACE(::testing::PrintToString(text));
        const SocketPair sockets;
        NetListenerAsycSend sender(sockets.ours.get());
        std::string copy = text;
        sender.asyncSend(copy);
        EXPECT_EQ(sockets.receive(framed(text).size()), framed(text));
        EXPECT_FALSE(sockets.hasSomething());
        EXPECT_EQ(copy, text);
    }
}

TEST(NetListenerAsycSendTest, KeepsTextsInOrder) {
    const SocketPair sockets;
    NetListenerAsycSend sender(sockets.ours.get());
    for (std::string text : {"one", "two", "three"})
        sender.asyncSend(text);
    sender.flush();
    const std::string expected = framed("one") + framed("two") + framed("three");
    EXPECT_EQ(sockets.receive(expected.size()), expected);
}

TEST(NetListenerAsycSendTest, DropsBinaryFrames) {
    const SocketPair sockets;
    NetListenerAsycSend sender(sockets.ours.get());
    std::vector<unsigned char> frame = {5, 'd', 'a', 'b', 'c'};
    sender.asyncSend(frame);
    sender.flush();
    EXPECT_FALSE(sockets.hasSomething());
    EXPECT_EQ(frame.size(), 5u);
}

TEST(NetListenerAsycSendTest, NeverWaitsForAPeerThatDoesNotRead) {
    const SocketPair sockets;
    NetListenerAsycSend sender(sockets.ours.get());
    std::string large(kMoreThanASocketTakes, 'x');
    std::string small = "behind it";
    sender.asyncSend(large); // would hang here
    sender.asyncSend(small);
    const std::string expected = framed(large) + framed(small);
    std::atomic<bool> flushed{false};
    std::thread flusher([&] {
        sender.flush();
        flushed = true;
    });
    EXPECT_FALSE(eventually([&] { return flushed.load(); }, std::chrono::milliseconds(10)));
    EXPECT_TRUE(sockets.receive(expected.size()) == expected);
    flusher.join();
}

TEST(NetListenerAsycSendTest, APeerThatHasGoneEndsNothingButTheSending) {
    static volatile sig_atomic_t raised = 0;
    const auto before = ::signal(SIGPIPE, [](int) { raised = 1; });
    SocketPair sockets;
    sockets.peer.reset();
    NetListenerAsycSend sender(sockets.ours.get());
    std::string text = "nobody reads this";
    sender.asyncSend(text);
    sender.flush();
    sender.asyncSend(text);
    sender.flush();
    ::signal(SIGPIPE, before);
    EXPECT_EQ(raised, 0);
}

TEST(NetListenerAsycSendTest, APeerThatGoesWhileItIsWaitedForEndsTheWait) {
    SocketPair sockets;
    NetListenerAsycSend sender(sockets.ours.get());
    std::string large(kMoreThanASocketTakes, 'x');
    sender.asyncSend(large);
    std::atomic<bool> flushed{false};
    std::thread flusher([&] {
        sender.flush();
        flushed = true;
    });
    sockets.peer.reset();
    EXPECT_TRUE(eventually([&] { return flushed.load(); }));
    flusher.join();
}

TEST(NetListenerAsycSendTest, LeavesTheSocketOpen) {
    const SocketPair sockets;
    { NetListenerAsycSend sender(sockets.ours.get()); }
    std::string text = "still there";
    NetListenerAsycSend(sockets.ours.get()).asyncSend(text);
    EXPECT_EQ(sockets.receive(framed(text).size()), framed(text));
}

TEST(NetListenerAsycSendTest, IsNoThreadAndNoSerialChannel) {
    NetListenerAsycSend sender(-1);
    sender.threadLoop(&sender); // returns
    EXPECT_EQ(sender.getState(), StatedThread::Created);
    EXPECT_EQ(sender.getDeviceListNumber(), 0);
}
