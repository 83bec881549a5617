// The bus's four requests, from the class that commands use down to the calls.
#include "devices/I2c.h"

#include <array>

#include "QnxTest.h"
#include "devices/support/BusResults.h"
#include "devices/support/Results.h"

using ::testing::ElementsAre;
using ::testing::SizeIs;

namespace {

constexpr unsigned kAddress = 0x50;

class QnxI2cTest : public QnxTest {
protected:
    void SetUp() override {
        FakeSystem::next("open64", {7});
        ASSERT_THAT(m_bus.open("/dev/i2c0"), isSuccess());
        ASSERT_THAT(FakeSystem::calls(), SizeIs(2));
    }

    std::array<unsigned char, 3> m_sent = {0x10, 0x11, 0x12};
    std::array<unsigned char, 2> m_received = {};
    I2c m_bus;
};

} // namespace

TEST_F(QnxI2cTest, TheSpeedIsABlockOfFourBytes) {
    EXPECT_THAT(m_bus.setBusSpeed(400000), isSuccess());
    EXPECT_CALLS(kAnswerLimit, "devctl 7 0x80040502 [801a0600] 4 null");
}

TEST_F(QnxI2cTest, TheSpeedIsWhatTheManagerMadeOfIt) {
    FakeSystem::next("devctl", {0, 0, {0xA0, 0x86, 0x01, 0x00}});
    EXPECT_THAT(m_bus.setBusSpeed(123456), isSuccess());
    unsigned speed = 0;
    EXPECT_THAT(m_bus.getBusSpeed(speed), isSuccess());
    EXPECT_EQ(speed, 100000U);
}

TEST_F(QnxI2cTest, AWriteIsItsHeaderAndItsBytes) {
    EXPECT_THAT(m_bus.write(kAddress, m_sent.data(), 3), isSuccess());
    EXPECT_CALLS(kAnswerLimit,
                 "devctlv 7 0x80100505 2 0 [50000000020000000300000001000000][101112] "
                 "nothing null");
}

TEST_F(QnxI2cTest, AReadHandsItsHeaderOverWhereTheReplyGoes) {
    std::vector<unsigned char> reply(16, 0xFF);
    reply.insert(reply.end(), {0x21, 0x22});
    FakeSystem::next("devctlv", {0, 0, reply});
    EXPECT_THAT(m_bus.read(kAddress, m_received.data(), 2), isSuccess());
    EXPECT_CALLS(kAnswerLimit,
                 "devctlv 7 0xc0100506 0 2 nothing "
                 "[50000000020000000200000001000000][0000] null");
    EXPECT_THAT(m_received, ElementsAre(0x21, 0x22));
}

TEST_F(QnxI2cTest, ATransferHasTwoPartsEachWay) {
    std::vector<unsigned char> reply(20, 0xFF);
    reply.insert(reply.end(), {0x21, 0x22});
    FakeSystem::next("devctlv", {0, 0, reply});
    EXPECT_THAT(m_bus.transfer(kAddress, m_sent.data(), 3, m_received.data(), 2), isSuccess());
    EXPECT_CALLS(kAnswerLimit,
                 "devctlv 7 0xc0140507 2 2 "
                 "[5000000002000000030000000200000001000000][101112] "
                 "[5000000002000000030000000200000001000000][0000] null");
    EXPECT_THAT(m_received, ElementsAre(0x21, 0x22));
}

TEST_F(QnxI2cTest, WithoutAStopConditionTheHeaderSaysSo) {
    m_bus.disableStopBit();
    EXPECT_THAT(m_bus.write(kAddress, m_sent.data(), 1), isSuccess());
    EXPECT_CALLS(kAnswerLimit,
                 "devctlv 7 0x80100505 2 0 [50000000020000000100000000000000][10] "
                 "nothing null");
}

TEST_F(QnxI2cTest, EachResultHasItsMeaning) {
    for (const auto& [result, written, read, speed] : kBusResults) {
        SCOPED_TRACE(result);
        FakeSystem::next("devctl", {result});
        for (int times = 0; times < 3; ++times)
            FakeSystem::next("devctlv", {result});
        EXPECT_THAT(m_bus.write(kAddress, m_sent.data(), 3),
                    isFailure(result, "Write Error on Device /dev/i2c0" + written));
        EXPECT_THAT(m_bus.read(kAddress, m_received.data(), 2),
                    isFailure(result, "Read Error on Device /dev/i2c0" + read));
        EXPECT_THAT(m_bus.transfer(kAddress, m_sent.data(), 3, m_received.data(), 2),
                    isFailure(result, "Transfer Error on Device /dev/i2c0" + written));
        EXPECT_THAT(m_bus.setBusSpeed(1),
                    isFailure(result, "setBusSpeed Error on Device /dev/i2c0" + speed));
    }
}
