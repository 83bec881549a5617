// The bus's four requests, from the class that commands use down to the calls.
#include "devices/I2c.h"

#include <array>
#include <cerrno>
#include <cstring>

#include "QnxTest.h"

using ::testing::ElementsAre;
using ::testing::SizeIs;

namespace {

constexpr unsigned kAddress = 0x50;

class QnxI2cTest : public QnxTest {
protected:
    void SetUp() override {
        FakeSystem::next("open64", {7});
        ASSERT_EQ(m_bus.open("/dev/i2c0").code, 0);
        ASSERT_THAT(FakeSystem::calls(), SizeIs(2));
    }

    std::array<unsigned char, 3> m_sent = {0x10, 0x11, 0x12};
    std::array<unsigned char, 2> m_received = {};
    I2c m_bus;
};

} // namespace

TEST_F(QnxI2cTest, TheSpeedIsABlockOfFourBytes) {
    EXPECT_EQ(m_bus.setBusSpeed(400000).code, 0);
    EXPECT_THAT(FakeSystem::calls(), ElementsAre(kAnswerLimit, "devctl 7 0x80040502 [801a0600] 4 null"));
}

TEST_F(QnxI2cTest, TheSpeedIsWhatTheManagerMadeOfIt) {
    FakeSystem::next("devctl", {0, 0, {0xA0, 0x86, 0x01, 0x00}});
    EXPECT_EQ(m_bus.setBusSpeed(123456).code, 0);
    unsigned speed = 0;
    EXPECT_EQ(m_bus.getBusSpeed(speed).code, 0);
    EXPECT_EQ(speed, 100000U);
}

TEST_F(QnxI2cTest, AWriteIsItsHeaderAndItsBytes) {
    EXPECT_EQ(m_bus.write(kAddress, m_sent.data(), 3).code, 0);
    EXPECT_THAT(FakeSystem::calls(),
                ElementsAre(kAnswerLimit,
                            "devctlv 7 0x80100505 2 0 [50000000020000000300000001000000][101112] "
                            "nothing null"));
}

TEST_F(QnxI2cTest, AReadHandsItsHeaderOverWhereTheReplyGoes) {
    std::vector<unsigned char> reply(16, 0xFF);
    reply.insert(reply.end(), {0x21, 0x22});
    FakeSystem::next("devctlv", {0, 0, reply});
    EXPECT_EQ(m_bus.read(kAddress, m_received.data(), 2).code, 0);
    EXPECT_THAT(FakeSystem::calls(), ElementsAre(kAnswerLimit,
                                                 "devctlv 7 0xc0100506 0 2 nothing "
                                                 "[50000000020000000200000001000000][0000] null"));
    EXPECT_THAT(m_received, ElementsAre(0x21, 0x22));
}

TEST_F(QnxI2cTest, ATransferHasTwoPartsEachWay) {
    std::vector<unsigned char> reply(20, 0xFF);
    reply.insert(reply.end(), {0x21, 0x22});
    FakeSystem::next("devctlv", {0, 0, reply});
    EXPECT_EQ(m_bus.transfer(kAddress, m_sent.data(), 3, m_received.data(), 2).code, 0);
    EXPECT_THAT(FakeSystem::calls(),
                ElementsAre(kAnswerLimit,
                            "devctlv 7 0xc0140507 2 2 "
                            "[5000000002000000030000000200000001000000][101112] "
                            "[5000000002000000030000000200000001000000][0000] null"));
    EXPECT_THAT(m_received, ElementsAre(0x21, 0x22));
}

TEST_F(QnxI2cTest, WithoutAStopConditionTheHeaderSaysSo) {
    m_bus.disableStopBit();
    EXPECT_EQ(m_bus.write(kAddress, m_sent.data(), 1).code, 0);
    EXPECT_THAT(FakeSystem::calls(),
                ElementsAre(kAnswerLimit,
                            "devctlv 7 0x80100505 2 0 [50000000020000000100000000000000][10] "
                            "nothing null"));
}

TEST_F(QnxI2cTest, EachResultHasItsMeaning) {
    const std::string locked = ": The master is locked by another connection";
    const std::string format = ": Bad message format";
    const struct {
        int result;
        std::string write;
        std::string read;
    } rows[] = {
        {EPERM, locked, std::string(": ") + std::strerror(EPERM)},
        {EIO, ": The master send failed", ": bad slave address/ bad bus speed/ bus is busy"},
        {ENOMEM, ": Insufficient memory", locked},
        {EFAULT, ": An error occurred while accessing the data buffer",
         std::string(": ") + std::strerror(EFAULT)},
        {EINVAL, format, format},
        {ETIMEDOUT, std::string(": ") + std::strerror(ETIMEDOUT),
         std::string(": ") + std::strerror(ETIMEDOUT)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.result);
        for (int times = 0; times < 3; ++times)
            FakeSystem::next("devctlv", {row.result});
        const DeviceResult written = m_bus.write(kAddress, m_sent.data(), 3);
        const DeviceResult read = m_bus.read(kAddress, m_received.data(), 2);
        const DeviceResult moved = m_bus.transfer(kAddress, m_sent.data(), 3, m_received.data(), 2);
        EXPECT_EQ(written.code, row.result);
        EXPECT_EQ(written.message, "Write Error on Device /dev/i2c0" + row.write);
        EXPECT_EQ(read.code, row.result);
        EXPECT_EQ(read.message, "Read Error on Device /dev/i2c0" + row.read);
        EXPECT_EQ(moved.code, row.result);
        EXPECT_EQ(moved.message, "Transfer Error on Device /dev/i2c0" + row.write);
    }
}

TEST_F(QnxI2cTest, ARefusedSpeedHasItsMeaning) {
    FakeSystem::next("devctl", {EINVAL});
    FakeSystem::next("devctl", {ENOTTY});
    const DeviceResult format = m_bus.setBusSpeed(1);
    EXPECT_EQ(format.code, EINVAL);
    EXPECT_EQ(format.message, "setBusSpeed Error on Device /dev/i2c0: Bad message format");
    const DeviceResult other = m_bus.setBusSpeed(1);
    EXPECT_EQ(other.code, ENOTTY);
    EXPECT_EQ(other.message,
              std::string("setBusSpeed Error on Device /dev/i2c0: ") + std::strerror(ENOTTY));
}
