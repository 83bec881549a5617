#include <gmock/gmock.h>

#include <chrono>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "core/Handler.h"
#include "devices/CommHandler.h"
#include "frontends/Listener.h"
#include "line/Adapter.h"
#include "support/BinaryFrames.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

constexpr int kStationChannel = 3;
constexpr int kNoSuchChannel = 4;
constexpr std::chrono::milliseconds kSilence{300};

std::vector<unsigned char> bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

/// Waits for what another thread does within microseconds, without giving up the processor.
template <typename Condition>
bool becomes(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition())
        if (std::chrono::steady_clock::now() > end)
            return false;
    return true;
}

/// The front end by itself, on the unit's line.
class BinaryListenerTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(comm()->setInterfaceTyp(kStationChannel, Comm::FileInterface).failed());
        ASSERT_FALSE(comm()->setInterface(Comm::On).failed());
    }

    void TearDown() override {
        Comm::Handle* port = nullptr;
        if (!comm()->device(&port, kStationChannel).failed())
            port->close();
        comm()->setInterface(Comm::Off);
    }

    /// What `action` writes to standard error.
    template <typename Action>
    static std::string errorOf(Action action) {
        testing::internal::CaptureStderr();
        action();
        return testing::internal::GetCapturedStderr();
    }

    Adapter adapter;
};

TEST_F(BinaryListenerTest, AFrameIsSentAsFarAsItsFirstByteSays) {
    Listener listener(kStationChannel);
    listener.setState(Listener::Running, false);
    std::vector<unsigned char> frame = bytes("\3dabc");
    EXPECT_EQ(listener.send(frame, false), 1);
    EXPECT_EQ(adapter.receive(3), "\3da");
    EXPECT_TRUE(adapter.isSilentFor(kSilence));
}

TEST_F(BinaryListenerTest, AFrameThatPromisesMoreThanItHasIsSentAsItIs) {
    Listener listener(kStationChannel);
    listener.setState(Listener::Running, false);
    std::vector<unsigned char> frame = bytes("\xFF" + "dab"s);
    EXPECT_EQ(listener.send(frame, false), 1);
    EXPECT_EQ(adapter.receive(4), "\xFF" + "dab"s);
    EXPECT_TRUE(adapter.isSilentFor(kSilence));
}

TEST_F(BinaryListenerTest, ACommandsFrameIsSentAtOnceAndItsTextDropped) {
    Listener listener(kStationChannel);
    listener.setState(Listener::Connected, false);
    std::string text = "text";
    listener.asyncSend(text);
    std::vector<unsigned char> frame = bytes("\3da");
    listener.asyncSend(frame);
    EXPECT_EQ(adapter.receive(3), "\3da");
    EXPECT_TRUE(adapter.isSilentFor(kSilence));
}

TEST_F(BinaryListenerTest, FramesOfSeveralThreadsDoNotMix) {
    // All of them together fit into the line: one that is full takes in part of a frame.
    constexpr int kFrames = 30;
    constexpr std::size_t kSize = 40;
    const std::string letters = "abc";
    Listener listener(kStationChannel);
    listener.setState(Listener::Connected, false);
    listener.notifyStartCommand();
    std::vector<unsigned char> first = bytes("\3da");
    ASSERT_EQ(listener.send(first, false), 1); // the port is open
    EXPECT_EQ(adapter.receiveFrame(), "\3da");

    std::vector<std::thread> threads;
    for (const char letter : letters)
        threads.emplace_back([&listener, letter] {
            std::vector<unsigned char> frame(kSize, static_cast<unsigned char>(letter));
            frame.front() = kSize;
            for (int number = 0; number < kFrames; ++number)
                listener.asyncSend(frame);
        });
    std::map<std::string, int> seen;
    for (std::size_t number = 0; number < kFrames * letters.size() && seen.size() <= letters.size();
         ++number)
        ++seen[adapter.receiveFrame()];
    for (std::thread& thread : threads)
        thread.join();
    std::map<std::string, int> expected;
    for (const char letter : letters)
        expected[framed(std::string(kSize - 1, letter))] = kFrames;
    EXPECT_EQ(seen, expected);
}

TEST_F(BinaryListenerTest, NothingIsSentBeforeItRunsOrOnceItStops) {
    for (const Listener::LState state :
         {Listener::Created, Listener::Started, Listener::Stopping, Listener::Dead}) {
        Listener listener(kStationChannel);
        listener.setState(state, true);
        std::vector<unsigned char> frame = bytes("\3da");
        EXPECT_EQ(errorOf([&] { EXPECT_EQ(listener.send(frame, true), 0); }), "");
    }
    EXPECT_TRUE(adapter.isSilentFor(kSilence));
}

TEST_F(BinaryListenerTest, AnEmptyFrameIsRemarkedOn) {
    Listener listener(kStationChannel);
    listener.setState(Listener::Running, false);
    std::vector<unsigned char> frame;
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(listener.send(frame, true), 0); }),
              "Prod.testserver: WARNING: Reponse size is 0\n");
}

TEST_F(BinaryListenerTest, AChannelErrorCountsOnceInTheLifeOfTheProcess) {
    adapter.pull();
    writeFile(kStationLine, "");
    const std::string reason =
        "Failed get original Device Attributes of /dev/usbserialadapter1: "
        "Inappropriate ioctl for device\n";
    const std::string openFailed = "Prod.testserver: Could not open the device: " + reason;
    std::vector<unsigned char> frame = bytes("\3da");
    Listener first(kStationChannel);
    first.setState(Listener::Running, false);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(first.send(frame, true), 0); }),
              openFailed + "Prod.testserver: ~ ### ~ Exception: ID: 0x25 DESC: " + reason);
    Listener second(kStationChannel);
    second.setState(Listener::Running, false);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(second.send(frame, false), 1); }), openFailed);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(second.send(frame, true), -1); }),
              openFailed + "Prod.testserver: Read locked error in CommHandler\n" +
                  "Prod.testserver: NO ACK message received from the client (not critical)\n");
}

TEST_F(BinaryListenerTest, AnUnknownChannelIsReportedEachTimeAndEndsItsThread) {
    Listener listener(kNoSuchChannel);
    EXPECT_EQ(errorOf([&] {
                  ASSERT_TRUE(listener.start());
                  listener.waitForDead();
              }),
              "Prod.testserver: Error in Listener thead loop\n"
              "Prod.testserver: 4~ ### ~ Exception: ID: 0x505 DESC: Handle does not exist\n");

    Listener other(kNoSuchChannel);
    other.setState(Listener::Running, false);
    std::vector<unsigned char> frame = bytes("\3da");
    for (int round = 0; round < 2; ++round)
        EXPECT_EQ(errorOf([&] { EXPECT_EQ(other.send(frame, false), 0); }),
                  "Prod.testserver: ~ ### ~ Exception: ID: 0x1285 DESC: Handle does not exist\n");
}

TEST_F(BinaryListenerTest, ChannelsThatAreSwitchedOffEndItsThread) {
    comm()->setInterface(Comm::Off);
    Listener listener(kStationChannel);
    EXPECT_EQ(errorOf([&] {
                  ASSERT_TRUE(listener.start());
                  listener.waitForDead();
              }),
              "Prod.testserver: Error in Listener thead loop\n"
              "Prod.testserver: 3~ ### ~ Exception: ID: 0x400 DESC: No Interface defined\n");
}

TEST_F(BinaryListenerTest, APortThatIsClosedRightBehindItsAnnouncementIsNoFailure) {
    constexpr int kRounds = 200;
    if (!Handler::getInstance()->isValid())
        Handler::getInstance()->start();
    Listener listener(kStationChannel);
    const std::string error = errorOf([&] {
        ASSERT_TRUE(listener.start());
        EXPECT_NE(adapter.receiveFrame(), "");
        for (int round = 0; round < kRounds && !HasFailure(); ++round) {
            listener.setState(Listener::Running, true);
            adapter.send(kAcknowledgement);
            const auto connected = [&] { return listener.getState() == Listener::Connected; };
            ASSERT_TRUE(becomes(connected));
            Comm::Handle* port = nullptr;
            ASSERT_FALSE(comm()->device(&port, kStationChannel).failed());
            port->close();
            EXPECT_EQ(adapter.receive(repetitionFrames().size()), repetitionFrames());
            EXPECT_NE(adapter.receiveFrame(), "");
        }
        adapter.send(kAcknowledgement);
        listener.setState(Listener::Stopping, false);
        listener.waitForDead();
    });
    EXPECT_THAT(error, testing::Not(testing::HasSubstr("Exception")));
}

TEST_F(BinaryListenerTest, EndsWhenItIsAskedTo) {
    adapter.pull();
    Listener listener(kStationChannel);
    ASSERT_TRUE(listener.start());
    ASSERT_TRUE(eventually([&] { return listener.getState() == Listener::Running; }));
    listener.setState(Listener::Stopping, false);
    listener.waitForDead();
    EXPECT_EQ(listener.getState(), Listener::Dead);
}

} // namespace
