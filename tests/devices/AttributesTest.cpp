// How the drivers set a line up, and put it back.
#include <iterator>

#include "support/DriverFixture.h"
#include "support/Rows.h"
#include "support/TestBytes.h"

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class AttributesTest : public DriverFixture {
protected:
    DeviceResult openFramed(unsigned dataBits, unsigned stopBits, CommInterface::Parity parity) {
        return m_driver->open(m_line.path(), 115200, dataBits, stopBits, parity);
    }
};

/// The control flags without the speed, which some systems keep among them.
tcflag_t frameOf(const termios& attributes) {
    return attributes.c_cflag & ~static_cast<tcflag_t>(CBAUD);
}

} // namespace

TEST_P(AttributesTest, TheLineIsSetUpInThisOrder) {
    ASSERT_THAT(openDriver(), isSuccess());
    EXPECT_THAT(m_calls.all(), ElementsAre("tcgetattr", "cfsetospeed", "cfsetispeed", "cfmakeraw",
                                           "tcsetattr", usesStream() ? "fflush" : "tcflush"));
    EXPECT_EQ(m_calls.lastSetAction, TCSAFLUSH);
}

TEST_P(AttributesTest, EachFrameFormatHasItsFlags) {
    const Rows<unsigned, unsigned, CommInterface::Parity, tcflag_t> rows = {
        {8, 1, CommInterface::None, CS8},
        {8, 2, CommInterface::None, CS8 | CSTOPB},
        {8, 1, CommInterface::Even, CS8 | PARENB},
        {8, 1, CommInterface::Odd, CS8 | PARENB | PARODD},
        {7, 1, CommInterface::None, CS7},
        {7, 1, CommInterface::Even, CS7 | PARENB},
        {7, 2, CommInterface::Odd, CS7 | CSTOPB | PARENB | PARODD},
        {6, 1, CommInterface::None, CS6},
        {6, 2, CommInterface::Even, CS6 | CSTOPB | PARENB},
        {5, 1, CommInterface::None, CS5},
        {5, 2, CommInterface::Odd, CS5 | CSTOPB | PARENB | PARODD},
    };
    for (const auto& [dataBits, stopBits, parity, flags] : rows) {
        ASSERT_THAT(openFramed(dataBits, stopBits, parity), isSuccess());
        EXPECT_EQ(frameOf(m_calls.beforeRaw), (flags | CREAD | CLOCAL))
            << dataBits << " data bits, " << stopBits << " stop bits, parity " << parity;
    }
}

TEST_P(AttributesTest, NothingElseIsOnBeforeTheLineIsMadeRaw) {
    ASSERT_THAT(openDriver(), isSuccess());
    EXPECT_EQ(m_calls.beforeRaw.c_iflag, static_cast<tcflag_t>(INPCK | ISTRIP));
    EXPECT_EQ(m_calls.beforeRaw.c_oflag, 0U);
    EXPECT_EQ(m_calls.beforeRaw.c_lflag, 0U);
    EXPECT_EQ(m_calls.beforeRaw.c_cc[VMIN], 1);
    m_calls.beforeRaw.c_cc[VMIN] = 0;
    EXPECT_THAT(m_calls.beforeRaw.c_cc, Each(0));
}

TEST_P(AttributesTest, WhatIsSetIsTheRawFormOfIt) {
    ASSERT_THAT(openFramed(7, 2, CommInterface::Odd), isSuccess());
    termios raw = m_calls.beforeRaw;
    ::cfmakeraw(&raw);
    EXPECT_TRUE(sameAttributes(m_calls.lastSet, raw));
}

TEST_P(AttributesTest, TheLineIsRaw) {
    ASSERT_THAT(openDriver(), isSuccess());
    const termios attributes = m_line.attributes();
    EXPECT_EQ(attributes.c_iflag, static_cast<tcflag_t>(INPCK));
    EXPECT_EQ(attributes.c_oflag, 0U);
    EXPECT_EQ(attributes.c_lflag, 0U);
    EXPECT_EQ(frameOf(attributes), static_cast<tcflag_t>(CS8 | CREAD | CLOCAL));
    EXPECT_EQ(attributes.c_cc[VMIN], 1);
    EXPECT_EQ(attributes.c_cc[VTIME], 0);
}

TEST_P(AttributesTest, EachSpeedIsSetInBothDirections) {
    const std::pair<unsigned, speed_t> speeds[] = {
        {50, B50},       {75, B75},       {110, B110},     {134, B134},
        {150, B150},     {200, B200},     {600, B600},     {1200, B1200},
        {1800, B1800},   {2400, B2400},   {4800, B4800},   {9600, B9600},
        {19200, B19200}, {38400, B38400}, {57600, B57600}, {115200, B115200}};
    for (const auto& [baud, speed] : speeds) {
        ASSERT_THAT(openDriver(baud), isSuccess()) << baud;
        const termios attributes = m_line.attributes();
        EXPECT_EQ(::cfgetospeed(&attributes), speed) << baud;
        EXPECT_EQ(::cfgetispeed(&attributes), speed) << baud;
    }
}

TEST_P(AttributesTest, EveryByteGoesThroughInBothDirections) {
    ASSERT_THAT(openDriver(), isSuccess());
    const std::string bytes = everyByte();
    m_line.send(bytes, 256);
    char buffer[300];
    unsigned count = 0;
    EXPECT_THAT(m_driver->read(count, buffer, 256, 60000), isSuccess());
    EXPECT_EQ(std::string(buffer, count), bytes);
    EXPECT_TRUE(m_line.isSilent()) << "an echo";
    EXPECT_THAT(m_driver->write(bytes.data(), 256), isSuccess());
    EXPECT_EQ(m_line.receive(256), bytes);
}

TEST_P(AttributesTest, ClosingPutsTheDevicesOwnSettingsBack) {
    termios own = m_line.attributes();
    own.c_lflag |= ECHO | ICANON | ISIG;
    own.c_iflag |= ICRNL | IXON;
    own.c_oflag |= OPOST | ONLCR;
    own.c_cc[VMIN] = 7;
    own.c_cc[VINTR] = 'q';
    ASSERT_EQ(::cfsetospeed(&own, B4800), 0);
    ASSERT_EQ(::cfsetispeed(&own, B4800), 0);
    m_line.setAttributes(own);
    own = m_line.attributes();

    ASSERT_THAT(openDriver(), isSuccess());
    ASSERT_FALSE(sameAttributes(m_line.attributes(), own));
    m_calls.forget();
    EXPECT_THAT(m_driver->close(), isSuccess());
    EXPECT_THAT(m_calls.all(), ElementsAre("tcsetattr"));
    EXPECT_EQ(m_calls.lastSetAction, TCSAFLUSH);
    EXPECT_TRUE(sameAttributes(m_line.attributes(), own));
}

TEST_P(AttributesTest, EachOpeningSavesTheSettingsItFinds) {
    ASSERT_THAT(openDriver(9600), isSuccess());
    ASSERT_THAT(m_driver->close(), isSuccess());
    termios changed = m_line.attributes();
    ASSERT_EQ(::cfsetospeed(&changed, B1200), 0);
    ASSERT_EQ(::cfsetispeed(&changed, B1200), 0);
    m_line.setAttributes(changed);
    ASSERT_THAT(openDriver(19200), isSuccess());
    ASSERT_THAT(m_driver->close(), isSuccess());
    EXPECT_TRUE(sameAttributes(m_line.attributes(), changed));
}

TEST_P(AttributesTest, DestructionPutsTheSettingsBackAndCloses) {
    const termios before = m_line.attributes();
    ASSERT_THAT(openDriver(), isSuccess());
    ASSERT_FALSE(sameAttributes(m_line.attributes(), before));
    m_driver.reset();
    EXPECT_TRUE(sameAttributes(m_line.attributes(), before));
    EXPECT_THAT(m_line.opened(), IsEmpty());
}

TEST_P(AttributesTest, DestructionOfAClosedDriverTouchesNothing) {
    m_driver.reset();
    EXPECT_THAT(m_calls.all(), IsEmpty());
}

WITH_BOTH_DRIVERS(AttributesTest);
