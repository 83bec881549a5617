// Serial lines.
#include "platform/Terminal.h"

#include <cerrno>
#include <string>

#include "QnxTest.h"
#include "support/ErrorNumber.h"

using ::testing::SizeIs;

namespace {

class QnxTerminalTest : public QnxTest {
protected:
    termios m_attributes{};
};

} // namespace

TEST_F(QnxTerminalTest, ALineIsOpenedForBothDirectionsWithoutWaiting) {
    FakeSystem::next("open64", {7});
    System::Descriptor line = System::openTerminal("/dev/ser1");
    EXPECT_EQ(line.release(), 7);
    EXPECT_CALLS("open64 \"/dev/ser1\" 0x82", "fcntl 7 2 0x1");
}

TEST_F(QnxTerminalTest, ALineThatIsMissingIsEmptyAndSaysWhy) {
    FakeSystem::fail("open64", ENOENT);
    EXPECT_EQ(errorOf(System::openTerminal("/dev/ser1")), ENOENT);
}

TEST_F(QnxTerminalTest, AStreamIsOpenedForUpdateAndMadeNonBlocking) {
    std::FILE* stream = System::openTerminalStream("/dev/usbserialadapter1");
    ASSERT_NE(stream, nullptr);
    const std::string descriptor = std::to_string(::fileno(stream));
    std::fclose(stream);
    EXPECT_CALLS("fopen64 \"/dev/usbserialadapter1\" \"rb+\"", "fcntl " + descriptor + " 2 0x1",
                 "fcntl " + descriptor + " 3 0x0", "fcntl " + descriptor + " 4 0x80", "fclose");
}

TEST_F(QnxTerminalTest, AStreamThatIsMissingIsNullAndSaysWhy) {
    FakeSystem::fail("fopen64", ENXIO);
    EXPECT_EQ(errorOf(System::openTerminalStream("/dev/usbserialadapter1")), ENXIO);
    EXPECT_THAT(FakeSystem::calls(), SizeIs(1));
}

TEST_F(QnxTerminalTest, AStreamThatOtherProgramsCouldInheritIsClosedAgain) {
    FakeSystem::fail("fcntl", EINVAL);
    EXPECT_EQ(errorOf(System::openTerminalStream("/dev/usbserialadapter1")), EINVAL);
    EXPECT_EQ(FakeSystem::calls().back(), "fclose");
}

TEST_F(QnxTerminalTest, AStreamThatWouldBlockIsClosedAgain) {
    FakeSystem::next("fcntl", {0, 0, {}});
    FakeSystem::next("fcntl", {0, 0, {}});
    FakeSystem::fail("fcntl", EINVAL);
    EXPECT_EQ(errorOf(System::openTerminalStream("/dev/usbserialadapter1")), EINVAL);
    EXPECT_EQ(FakeSystem::calls().back(), "fclose");
}

TEST_F(QnxTerminalTest, ASpeedIsItsOwnNumber) {
    for (const unsigned baud : {50U, 75U, 110U, 134U, 150U, 200U, 600U, 1200U, 1800U, 2400U, 4800U,
                                9600U, 19200U, 38400U, 57600U, 115200U}) {
        EXPECT_TRUE(System::setOutputSpeed(m_attributes, baud));
        EXPECT_TRUE(System::setInputSpeed(m_attributes, baud));
        EXPECT_EQ(m_attributes.c_ospeed, baud);
        EXPECT_EQ(m_attributes.c_ispeed, baud);
        EXPECT_CALLS("cfsetospeed " + std::to_string(baud), "cfsetispeed " + std::to_string(baud));
    }
}

TEST_F(QnxTerminalTest, ARefusedSpeedIsFalseAndSaysWhy) {
    FakeSystem::fail("cfsetospeed", EINVAL);
    EXPECT_EQ(errorOf(System::setOutputSpeed(m_attributes, 115200)), EINVAL);
    FakeSystem::fail("cfsetispeed", ERANGE);
    EXPECT_EQ(errorOf(System::setInputSpeed(m_attributes, 115200)), ERANGE);
}

TEST_F(QnxTerminalTest, ALineIsMadeRawTheSystemsWay) {
    m_attributes.c_lflag = 0xFF;
    EXPECT_TRUE(System::makeRaw(m_attributes));
    EXPECT_EQ(m_attributes.c_lflag, 0U);
    EXPECT_CALLS("cfmakeraw");
}

TEST_F(QnxTerminalTest, ALineThatCannotBeMadeRawSaysWhy) {
    FakeSystem::fail("cfmakeraw", EIO);
    EXPECT_EQ(errorOf(System::makeRaw(m_attributes)), EIO);
}
