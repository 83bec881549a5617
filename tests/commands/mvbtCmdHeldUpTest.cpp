// The Bluetooth link and a driver that takes its time, or does not let go.
#include <thread>

#include "support/BluetoothFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

class mvbtCmdHeldUpTest : public BluetoothFixture {
protected:
    /// Closes the link under a reader that notices nothing.
    void leaveReaderBehind() {
        m_driver.ignoreCancelling(true);
        m_driver.ignoreClosing(true);
        openAndRead();
        closePromptly();
    }
    /// Opens the link, and holds its reader up when it opens the driver anew.
    void openAndHoldUpReopening() {
        open();
        m_driver.holdUp(ScriptedBluetooth::InOpen);
        m_driver.willFailToRead(1);
        EXPECT_TRUE(m_driver.waitUntilInside(ScriptedBluetooth::InOpen));
    }
};

} // namespace

TEST_F(mvbtCmdHeldUpTest, AReadThatCannotBeCancelledKeepsTheLibraryUntilItComesBack) {
    m_driver.holdUp(ScriptedBluetooth::InRead);
    openAndRead();
    closePromptly();
    EXPECT_TRUE(m_driver.isLoaded());
    EXPECT_THAT(m_driver.closed(), ElementsAre(1));
    m_driver.receive(kEvent, {1});
    m_driver.release(ScriptedBluetooth::InRead);
    EXPECT_TRUE(m_driver.waitUntilUnloaded());
    EXPECT_EQ(m_driver.loads(), 1);
    EXPECT_EQ(m_driver.reads(), 1) << "it ends";
}

TEST_F(mvbtCmdHeldUpTest, AReadThatCannotBeCancelledIsWokenByClosing) {
    m_driver.ignoreCancelling(true);
    openAndRead();
    EXPECT_EQ(errorOutputOf([&] { closePromptly(); }), "") << "this is no failure of the driver's";
    EXPECT_TRUE(m_driver.waitUntilUnloaded());
    EXPECT_EQ(m_driver.reads(), 1);
    EXPECT_EQ(m_driver.openings(), 1);
}

TEST_F(mvbtCmdHeldUpTest, AReadFromBeforeDeliversNothingToALaterOpening) {
    leaveReaderBehind();
    m_driver.ignoreCancelling(false);
    openAndRead(2);
    EXPECT_EQ(m_driver.openings(), 2);
    m_driver.receiveFor(1, kEvent, {1});
    ASSERT_TRUE(eventually([&] { return m_driver.readers() == 1; })) << "the one from before ends";
    EXPECT_TRUE(m_link.isQueueEmpty());
    m_driver.receiveFor(2, kEvent, {2});
    expectPacket(kEvent, {2});
    EXPECT_TRUE(m_link.checkDll());
    expectWorking();
    closePromptly();
    EXPECT_THAT(m_driver.closed(), ElementsAre(1, 2));
}

TEST_F(mvbtCmdHeldUpTest, AReadFromBeforeThatFailsReopensNothing) {
    leaveReaderBehind();
    EXPECT_EQ(errorOutputOf([&] {
                  m_driver.willFailToRead(1);
                  EXPECT_TRUE(m_driver.waitUntilUnloaded());
              }),
              "");
    EXPECT_EQ(m_driver.openings(), 1);
    EXPECT_THAT(m_driver.closed(), ElementsAre(1));
}

TEST_F(mvbtCmdHeldUpTest, ADriverThatDoesNotLetGoIsOpenedAllTheSame) {
    m_driver.holdUp(ScriptedBluetooth::InRead);
    constexpr int kTimes = 6;
    for (int time = 1; time <= kTimes; ++time) {
        openAndRead(time);
        closePromptly();
    }
    EXPECT_THAT(m_driver.closed(), SizeIs(kTimes));
    m_driver.release(ScriptedBluetooth::InRead);
    EXPECT_TRUE(m_driver.waitUntilUnloaded());
    open();
    expectWorking();
}

TEST_F(mvbtCmdHeldUpTest, ClosingWhileTheReaderOpensAnew) {
    ::testing::internal::CaptureStderr();
    openAndHoldUpReopening();
    closePromptly();
    EXPECT_TRUE(m_driver.isLoaded()) << "the reader is inside";
    EXPECT_EQ(m_link.open(), -1) << "nor is it waited for now";
    m_driver.release(ScriptedBluetooth::InOpen);
    EXPECT_TRUE(m_driver.waitUntilUnloaded());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), std::string(kReadFailed) + "MVBT open failed\n");
    EXPECT_THAT(m_driver.closed(), ElementsAre(1, 2));
    EXPECT_EQ(m_driver.openings(), 2);
    EXPECT_EQ(m_driver.reads(), 1);
    open();
    expectWorking();
}

TEST_F(mvbtCmdHeldUpTest, WhileTheReaderOpensAnewNothingElseWaitsForIt) {
    ::testing::internal::CaptureStderr();
    openAndHoldUpReopening();
    EXPECT_FALSE(m_link.checkDll());
    write(1, {1});
    Bytes data = {7};
    EXPECT_EQ(m_link.readnbytes(data, 0, 5), -1);
    EXPECT_EQ(m_link.open(), -1);
    m_driver.release(ScriptedBluetooth::InOpen);
    EXPECT_TRUE(isLoadedAgain());
    ::testing::internal::GetCapturedStderr();
    EXPECT_THAT(m_driver.writes(), IsEmpty());
    EXPECT_EQ(m_driver.openings(), 2);
    expectWorking();
}

TEST_F(mvbtCmdHeldUpTest, TheDriverIsOpenedAnewOnceAWriteHasEnded) {
    openAndRead();
    m_driver.holdUp(ScriptedBluetooth::InWrite);
    ::testing::internal::CaptureStderr();
    std::thread writer([&] { write(1, {5, 6}); });
    EXPECT_TRUE(m_driver.waitUntilInside(ScriptedBluetooth::InWrite));
    m_driver.willFailToRead(1);
    EXPECT_TRUE(eventually([&] { return m_driver.failedReads().size() == 1; }));
    EXPECT_THAT(m_driver.closed(), IsEmpty());
    m_driver.release(ScriptedBluetooth::InWrite);
    writer.join();
    EXPECT_TRUE(eventually([&] { return m_driver.openings() == 2; }));
    EXPECT_TRUE(isLoadedAgain());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), kReadFailed);
    EXPECT_THAT(m_driver.closed(), ElementsAre(1));
    expectWorking();
}
