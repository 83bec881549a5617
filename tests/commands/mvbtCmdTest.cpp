// The Bluetooth link and a driver that does what it should.
#include <chrono>

#include "support/BluetoothFixture.h"
#include "support/Rows.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using mvbtCmdTest = BluetoothFixture;

} // namespace

TEST_F(mvbtCmdTest, OpeningLoadsTheLibraryAndOpensTheDevice) {
    EXPECT_FALSE(m_link.checkDll());
    EXPECT_EQ(errorOutputOf([&] { open(); }), "");
    EXPECT_TRUE(m_link.checkDll());
    EXPECT_EQ(m_driver.loads(), 1);
    EXPECT_EQ(m_driver.lastOpening().path, "/dev/sdio0");
    EXPECT_EQ(m_driver.lastOpening().flags, 0);
    EXPECT_TRUE(m_driver.waitUntilInside(ScriptedBluetooth::InRead));
}

TEST_F(mvbtCmdTest, OpeningTwiceChangesNothing) {
    open();
    receive({1, 2});
    open();
    EXPECT_EQ(m_driver.openings(), 1);
    EXPECT_EQ(m_link.getQueueSize(), 3U) << "what waits, too, stays";
}

TEST_F(mvbtCmdTest, ClosingEndsTheReaderClosesTheDeviceAndUnloads) {
    for (int time = 1; time <= 3; ++time) {
        openAndRead();
        EXPECT_EQ(errorOutputOf([&] { EXPECT_EQ(m_link.close(), 0); }), "");
        EXPECT_FALSE(m_link.checkDll());
        EXPECT_FALSE(m_driver.isLoaded());
        EXPECT_EQ(m_driver.readersWhenUnloaded(), 0);
        EXPECT_EQ(m_driver.loads(), time);
    }
    EXPECT_THAT(m_driver.closed(), ElementsAre(1, 2, 3));
}

TEST_F(mvbtCmdTest, ClosingWhatIsClosedIsASuccess) {
    EXPECT_EQ(m_link.close(), 0);
    open();
    EXPECT_EQ(m_link.close(), 0);
    EXPECT_EQ(m_link.close(), 0);
}

TEST_F(mvbtCmdTest, ClosingWhileAPacketWaits) {
    open();
    receive({1, 2});
    EXPECT_EQ(m_link.close(), 0);
    EXPECT_FALSE(m_driver.isLoaded());
    open();
    EXPECT_TRUE(m_link.isQueueEmpty());
}

TEST_F(mvbtCmdTest, NothingWorksWhileItIsClosed) {
    Bytes data = {7, 8};
    EXPECT_EQ(m_link.readnbytes(data, 0, 5), -1);
    EXPECT_EQ(m_link.read(data, 0), -1);
    EXPECT_THAT(data, ElementsAre(7, 8));
    EXPECT_EQ(errorOutputOf([&] { write(1, {1}); }), "");
    EXPECT_TRUE(m_link.isQueueEmpty());
    EXPECT_EQ(m_driver.loads(), 0);
}

TEST_F(mvbtCmdTest, AnyHandleButZeroIsOne) {
    m_driver.willOpenAs({-1, 0x7FFFFFFF});
    for (int time = 0; time < 2; ++time) {
        open();
        write(1, {9});
        EXPECT_EQ(m_link.close(), 0);
    }
    EXPECT_TRUE(m_driver.waitUntilUnloaded());
    EXPECT_THAT(m_driver.closed(), ElementsAre(-1, 0x7FFFFFFF));
}

TEST_F(mvbtCmdTest, APacketWaitsAsItsTypeAndItsBytes) {
    open();
    for (const std::size_t size : {0U, 1U, 2U, 247U, 255U, 1021U, 65535U, 65539U}) {
        SCOPED_TRACE(size);
        const Bytes bytes(size, 0xC3);
        receive(bytes);
        Bytes data = {7, 8};
        EXPECT_EQ(m_link.read(data, 0), static_cast<int>(size + 1));
        EXPECT_EQ(data, packet(kEvent, bytes));
        EXPECT_EQ(m_link.read(data, 0), 0);
        EXPECT_THAT(data, IsEmpty());
    }
}

TEST_F(mvbtCmdTest, OnePacketWaitsAtATime) {
    open();
    for (unsigned char number = 1; number <= 3; ++number)
        m_driver.receive(number, {number});
    ASSERT_TRUE(has(2));
    EXPECT_EQ(m_driver.reads(), 1) << "not before the first one is fetched";
    Bytes data;
    EXPECT_EQ(m_link.readnbytes(data, 0, 1), 2);
    EXPECT_THAT(data, ElementsAre(1));
    EXPECT_EQ(m_driver.reads(), 1) << "all of it";
    EXPECT_EQ(m_link.readnbytes(data, 0, 1), 2);
    EXPECT_THAT(data, ElementsAre(1));
    for (unsigned char number = 2; number <= 3; ++number)
        expectPacket(number, {number});
    EXPECT_TRUE(m_driver.waitUntilInside(ScriptedBluetooth::InRead));
    EXPECT_EQ(m_driver.reads(), 4);
}

TEST_F(mvbtCmdTest, ReadingSoManyBytesTakesWhatThereIsAtMost247) {
    const Rows<std::size_t, unsigned char, std::size_t> rows = {
        {1, 1, 1},       {10, 3, 3},      {10, 10, 10},    {10, 242, 10},  {10, 0, 0},
        {300, 242, 242}, {300, 247, 247}, {300, 248, 247}, {300, 255, 247}};
    for (const auto& [waiting, wanted, taken] : rows) {
        SCOPED_TRACE(int{wanted});
        open();
        receive(Bytes(waiting - 1, 0x11));
        Bytes data(wanted, 0xEE);
        EXPECT_EQ(m_link.readnbytes(data, 0, wanted), static_cast<int>(taken) + 1);
        EXPECT_EQ(data.size(), taken);
        EXPECT_THAT(data, ::testing::Each(::testing::AnyOf(0x04, 0x11)));
        EXPECT_EQ(m_link.getQueueSize(), waiting - taken);
        m_link.close();
    }
}

TEST_F(mvbtCmdTest, ReadingWhenNothingWaitsTakesNothing) {
    open();
    Bytes data = {7, 8};
    EXPECT_EQ(m_link.readnbytes(data, 0, 5), 1);
    EXPECT_THAT(data, IsEmpty());
    data = {7, 8};
    EXPECT_EQ(m_link.read(data, 0), 0);
    EXPECT_THAT(data, IsEmpty());
}

TEST_F(mvbtCmdTest, ReadingWaitsFirst) {
    open();
    const auto before = std::chrono::steady_clock::now();
    Bytes data;
    m_link.readnbytes(data, 20, 5);
    m_link.read(data, 20);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(40));
}

TEST_F(mvbtCmdTest, WritingHandsThePacketToTheDriver) {
    open();
    EXPECT_EQ(errorOutputOf([&] {
                  write(1, {0x03, 0x0C, 0x00});
                  write(0xFF, Bytes(250, 0x5A));
                  write(2, {});
              }),
              "");
    EXPECT_TRUE((m_driver.writes() == std::vector<ScriptedBluetooth::Write>{
                                          {1, 1, {0x03, 0x0C, 0x00}},
                                          {1, 0xFF, Bytes(250, 0x5A)},
                                          {1, 2, {}},
                                      }));
}

TEST_F(mvbtCmdTest, WritingDropsWhatWaitsBefore) {
    open();
    receive({1, 2, 3});
    write(1, {0});
    EXPECT_TRUE(m_link.isQueueEmpty());
    m_driver.receive(kEvent, {9});
    expectPacket(kEvent, {9});
}

TEST_F(mvbtCmdTest, WritingIsNotHeldUpByAReadThatWaits) {
    openAndRead();
    write(1, {1});
    EXPECT_EQ(m_driver.writes().size(), 1U);
    EXPECT_EQ(m_driver.inside(ScriptedBluetooth::InRead), 1);
}

TEST_F(mvbtCmdTest, AFailedWriteIsTold) {
    open();
    m_driver.willFailToWrite(1);
    EXPECT_EQ(errorOutputOf([&] { write(1, {1}); }),
              "Error during writing on Bluetooth SDIO interface\n");
    EXPECT_EQ(errorOutputOf([&] { write(1, {1}); }), "");
    EXPECT_TRUE(m_link.checkDll());
}
