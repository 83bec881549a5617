// The numbers that users give, and what stands for them in the terminal interface.
#include <termios.h>

#include "devices/CommSerial.h"
#include "support/Results.h"

namespace {

constexpr unsigned kUntouched = 4711;

class ConversionTablesTest : public ::testing::Test {
protected:
    CommSerial m_driver;
    unsigned m_value = kUntouched;
};

} // namespace

TEST_F(ConversionTablesTest, TheseSpeedsStandForThemselves) {
    for (const unsigned baud : {50U, 75U, 110U, 134U, 150U, 200U, 600U, 1200U, 1800U, 2400U, 4800U,
                                9600U, 19200U, 38400U, 57600U, 115200U}) {
        m_value = kUntouched;
        EXPECT_THAT(m_driver.val2BaudRate(m_value, baud), isSuccess()) << baud;
        EXPECT_EQ(m_value, baud);
    }
}

TEST_F(ConversionTablesTest, AnyOtherSpeedIsInvalid) {
    for (const unsigned baud : {0U, 1U, 49U, 51U, 300U, 1000U, 9599U, 9601U, 14400U, 28800U, 115199U,
                                115201U, 230400U, 4000000U, 2147483648U, 4294967295U}) {
        EXPECT_THAT(m_driver.val2BaudRate(m_value, baud),
                    isFailure(0x501, "Invalid Baudrate " + std::to_string(baud)));
        EXPECT_EQ(m_value, kUntouched);
    }
}

TEST_F(ConversionTablesTest, TheTextOfAnInvalidSpeedIsExact) {
    EXPECT_THAT(m_driver.val2BaudRate(m_value, 300), isFailure(1281, "Invalid Baudrate 300"));
}

TEST_F(ConversionTablesTest, TheSystemsOwnConstantIsNoSpeed) {
    EXPECT_THAT(m_driver.val2BaudRate(m_value, B9600), isFailure(0x501, "Invalid Baudrate 13"));
}

TEST_F(ConversionTablesTest, FiveToEightDataBitsHaveAFlag) {
    const std::pair<unsigned, unsigned> flags[] = {{5, CS5}, {6, CS6}, {7, CS7}, {8, CS8}};
    for (const auto& [dataBits, flag] : flags) {
        m_value = kUntouched;
        EXPECT_THAT(m_driver.val2DataBitFlag(m_value, dataBits), isSuccess()) << dataBits;
        EXPECT_EQ(m_value, flag) << dataBits;
    }
}

TEST_F(ConversionTablesTest, AnyOtherNumberOfDataBitsIsInvalid) {
    for (const unsigned dataBits : {0U, 1U, 4U, 9U, 16U, 0x30U, 4294967295U}) {
        EXPECT_THAT(m_driver.val2DataBitFlag(m_value, dataBits), isFailure(0x502, "Invalid Databits"))
            << dataBits;
        EXPECT_EQ(m_value, kUntouched);
    }
}

TEST_F(ConversionTablesTest, AskingTwiceGivesTheSameAnswer) {
    for (int round = 0; round < 2; ++round) {
        EXPECT_THAT(m_driver.val2BaudRate(m_value, 9600), isSuccess());
        EXPECT_EQ(m_value, 9600U);
        EXPECT_THAT(m_driver.val2DataBitFlag(m_value, 7), isSuccess());
        EXPECT_EQ(m_value, static_cast<unsigned>(CS7));
        EXPECT_THAT(m_driver.val2BaudRate(m_value, 300), isFailure(0x501, "Invalid Baudrate 300"));
    }
}

TEST_F(ConversionTablesTest, AResultIsMadeOfAMessageAndACode) {
    EXPECT_THAT(CommInterface::create_commhanderror("what went wrong", -5),
                isFailure(-5, "what went wrong"));
    EXPECT_THAT(CommInterface::create_commhanderror("", 0), isSuccess());
}
