// The Bluetooth link and a driver that fails.
#include <algorithm>
#include <chrono>
#include <climits>
#include <functional>
#include <random>

#include "core/StandardStream.h"
#include "support/BluetoothFixture.h"
#include "support/PthreadCalls.h"
#include "support/Rows.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

using std::chrono::milliseconds;

using mvbtCmdFailureTest = BluetoothFixture;

} // namespace

TEST_F(mvbtCmdFailureTest, ADeviceThatCannotBeOpenedIsToldAndTriedAgain) {
    m_driver.refuseToOpen(true);
    for (int time = 0; time < 2; ++time)
        expectNotOpened("MVBT open failed\n");
    EXPECT_THAT(m_driver.closed(), IsEmpty());
    EXPECT_EQ(m_driver.reads(), 0);
    m_driver.refuseToOpen(false);
    open();
    expectWorking();
}

TEST_F(mvbtCmdFailureTest, ATableWithAHoleIsNone) {
    for (const std::size_t slot : {1U, 2U, 3U, 5U}) {
        SCOPED_TRACE(slot);
        m_driver.willLack(slot);
        expectNotOpened("Can't find driver entry\n");
    }
    EXPECT_EQ(m_driver.openings(), 0);
    open();
    expectWorking();
}

TEST_F(mvbtCmdFailureTest, AThreadThatCannotBeMadeIsToldAndNothingIsRead) {
    m_driver.receive(kEvent, {1});
    PthreadCalls calls;
    calls.fail("pthread_create");
    EXPECT_EQ(errorOutputOf([&] { open(); }), "Could not create the reading thread, returncode 11\n");
    EXPECT_TRUE(m_link.checkDll());
    write(1, {2});
    EXPECT_THAT(m_driver.writes(), SizeIs(1));
    calls.failNothing();
    open();
    EXPECT_EQ(m_driver.reads(), 0) << "it is open already";
    closePromptly();
    EXPECT_FALSE(m_driver.isLoaded());
    open();
    EXPECT_TRUE(has(2));
    closePromptly(); // before the calls are let alone again: the reader makes some
}

TEST_F(mvbtCmdFailureTest, AMutexThatCannotBeMadeIsToldAndChangesNothing) {
    StandardStream::error(); // which makes mutexes of its own
    PthreadCalls calls;
    calls.fail("pthread_mutex_init");
    EXPECT_EQ(errorOutputOf([&] { open(); }),
              "Could not initialize the mutex for BT chip read/write processes, errorcode: 11\n");
    expectWorking();
    closePromptly();
    calls.failNothing();
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(errorOutputOf([&] { open(); }), "");
        closePromptly();
    }
    EXPECT_EQ(calls.count("pthread_mutex_init"), 2) << "until it is made";
}

TEST_F(mvbtCmdFailureTest, AFailedReadOpensTheDriverAnew) {
    openAndRead();
    EXPECT_EQ(errorOutputOf([&] {
                  m_driver.willFailToRead(1);
                  EXPECT_TRUE(eventually([&] { return m_driver.reads() == 2; }));
              }),
              kReadFailed);
    EXPECT_THAT(m_driver.closed(), ElementsAre(1));
    EXPECT_EQ(m_driver.loads(), 2);
    EXPECT_EQ(m_driver.openings(), 2);
    expectWorking();
    closePromptly();
    EXPECT_THAT(m_driver.closed(), ElementsAre(1, 2));
}

TEST_F(mvbtCmdFailureTest, WhatCannotBeAPacketCountsAsAFailedRead) {
    const Rows<int, bool> rows = {
        {-1, true}, {INT_MIN, true}, {65540, true}, {INT_MAX, true}, {1, false}};
    for (const auto& [length, hasBytes] : rows) {
        SCOPED_TRACE(length);
        open();
        EXPECT_EQ(errorOutputOf([this, length = length, hasBytes = hasBytes] {
                      const int before = m_driver.openings();
                      m_driver.receiveOdd(kEvent, length, hasBytes);
                      EXPECT_TRUE(eventually([&] { return m_driver.openings() == before + 1; }));
                  }),
                  kReadFailed);
        EXPECT_TRUE(isLoadedAgain());
        EXPECT_TRUE(m_link.isQueueEmpty());
        closePromptly();
    }
    open();
    m_driver.receiveOdd(kEvent, 0, false);
    ASSERT_TRUE(has(1)) << "a packet may have no bytes";
    EXPECT_EQ(fetch(), packet(kEvent, {}));
}

TEST_F(mvbtCmdFailureTest, ADriverThatFailsForEverIsTriedNowAndThen) {
    open();
    ::testing::internal::CaptureStderr();
    m_driver.willFailToRead(INT_MAX);
    EXPECT_TRUE(eventually([&] { return m_driver.failedReads().size() >= 4; }));
    closePromptly();
    ::testing::internal::GetCapturedStderr();
    const auto times = m_driver.failedReads();
    for (std::size_t at = 1; at < times.size(); ++at)
        EXPECT_GE(times[at] - times[at - 1], milliseconds(500));
    m_driver.willFailToRead(0);
    open();
    expectWorking();
}

TEST_F(mvbtCmdFailureTest, ADriverThatCannotBeOpenedAnewIsTriedNowAndThen) {
    openAndRead();
    m_driver.refuseToOpen(true);
    const std::string told = errorOutputOf([&] {
        m_driver.willFailToRead(1);
        EXPECT_TRUE(eventually([&] { return m_driver.openings() >= 2; }));
        // While there is no driver, the link is as if it were closed.
        EXPECT_TRUE(eventually([&] { return !m_link.checkDll(); }));
        Bytes data = {7};
        EXPECT_EQ(m_link.readnbytes(data, 0, 5), -1);
        write(1, {1});
        EXPECT_TRUE(eventually([&] { return m_driver.openings() >= 3; }));
        m_driver.refuseToOpen(false);
        EXPECT_TRUE(isLoadedAgain());
    });
    EXPECT_THAT(told,
                ::testing::StartsWith(std::string(kReadFailed) + "MVBT open failed\n" + kReadFailed));
    EXPECT_THAT(m_driver.writes(), IsEmpty());
    expectWorking();
}

TEST_F(mvbtCmdFailureTest, OpeningMayHelpAReaderThatCannotOpenAnew) {
    open();
    m_driver.refuseToOpen(true);
    ::testing::internal::CaptureStderr();
    m_driver.willFailToRead(1);
    EXPECT_TRUE(eventually([&] { return m_driver.openings() >= 2; }));
    EXPECT_EQ(m_link.open(), -1);
    m_driver.refuseToOpen(false);
    open();
    EXPECT_TRUE(m_link.checkDll());
    ::testing::internal::GetCapturedStderr();
    expectWorking();
}

TEST_F(mvbtCmdFailureTest, ClosingDuringThePauseDoesNotWaitForItsEnd) {
    open();
    ::testing::internal::CaptureStderr();
    m_driver.willFailToRead(1);
    EXPECT_TRUE(eventually([&] { return m_driver.openings() == 2; }));
    EXPECT_TRUE(isLoadedAgain());
    closePromptly();
    ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(m_driver.waitUntilUnloaded());
    EXPECT_LE(m_driver.reads(), 2);
}

TEST_F(mvbtCmdFailureTest, AThousandRandomStepsLeaveNothingBehind) {
    std::mt19937 random(20240229);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    ::testing::internal::CaptureStderr();
    unsigned char number = 0;
    int mixed = 0;
    for (int step = 0; step < 1000; ++step) {
        Bytes data;
        switch (upTo(7)) {
            case 0:
                m_link.open();
                break;
            case 1:
                if (upTo(2) == 0)
                    m_link.close();
                break;
            case 2:
                write(1, Bytes(static_cast<std::size_t>(upTo(250)), number));
                break;
            case 3:
                ++number;
                m_driver.receive(number, Bytes(static_cast<std::size_t>(upTo(300)), number));
                break;
            case 4:
                m_link.readnbytes(data, 0, static_cast<unsigned char>(1 + upTo(241)));
                break;
            case 5:
                m_link.read(data, static_cast<unsigned>(upTo(2)));
                break;
            case 6:
                if (upTo(9) == 0)
                    m_driver.willFailToRead(1 + upTo(1));
                break;
            default:
                m_driver.refuseToOpen(upTo(9) == 0);
                if (upTo(9) == 0)
                    m_driver.willFailToWrite(1);
                break;
        }
        // Whatever is fetched at once belongs to one packet.
        mixed +=
            std::adjacent_find(data.begin(), data.end(), std::not_equal_to<>()) != data.end() ? 1 : 0;
    }
    closePromptly();
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(mixed, 0);
    EXPECT_TRUE(m_driver.waitUntilUnloaded());
    EXPECT_GT(m_driver.openings(), 20);
    EXPECT_THAT(m_driver.writes(), ::testing::Not(IsEmpty()));
    m_driver.refuseToOpen(false);
    m_driver.willFailToRead(0);
    m_driver.willFailToWrite(0);
    open();
    EXPECT_TRUE(m_link.checkDll());
}
