#include "platform/Terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <utility>

#include "support/DescriptorLimit.h"
#include "support/ErrorNumber.h"
#include "support/PseudoTerminal.h"

using System::Descriptor;

namespace {

struct CloseStream {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

class TerminalTest : public ::testing::Test {
protected:
    static int statusFlags(int descriptor) { return ::fcntl(descriptor, F_GETFL); }
    static bool closesOnExec(int descriptor) { return (::fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0; }

    PseudoTerminal m_line;
};

constexpr std::pair<unsigned, speed_t> kSpeeds[] = {
    {50, B50},     {75, B75},       {110, B110},     {134, B134},     {150, B150},      {200, B200},
    {300, B300},   {600, B600},     {1200, B1200},   {1800, B1800},   {2400, B2400},    {4800, B4800},
    {9600, B9600}, {19200, B19200}, {38400, B38400}, {57600, B57600}, {115200, B115200}};

} // namespace

TEST_F(TerminalTest, ADescriptorIsNonBlockingForBothDirectionsAndCannotBeInherited) {
    const Descriptor terminal = System::openTerminal(m_line.path().c_str());
    ASSERT_TRUE(terminal);
    EXPECT_EQ(statusFlags(terminal.get()) & O_ACCMODE, O_RDWR);
    EXPECT_NE(statusFlags(terminal.get()) & O_NONBLOCK, 0);
    EXPECT_TRUE(closesOnExec(terminal.get()));
    char byte = 0;
    EXPECT_EQ(errorOf(::read(terminal.get(), &byte, 1)), EAGAIN);
}

TEST_F(TerminalTest, AStreamIsNonBlockingForBothDirectionsAndCannotBeInherited) {
    const Stream stream(System::openTerminalStream(m_line.path().c_str()));
    ASSERT_NE(stream, nullptr);
    const int descriptor = ::fileno(stream.get());
    EXPECT_EQ(statusFlags(descriptor) & O_ACCMODE, O_RDWR);
    EXPECT_NE(statusFlags(descriptor) & O_NONBLOCK, 0);
    EXPECT_TRUE(closesOnExec(descriptor));
    ASSERT_EQ(std::fputs("out\n", stream.get()), 1);
    ASSERT_EQ(std::fflush(stream.get()), 0);
    EXPECT_EQ(m_line.receive(3), "out");
}

TEST_F(TerminalTest, WhatDoesNotExistIsNotOpened) {
    EXPECT_EQ(errorOf(System::openTerminal("/nowhere/line")), ENOENT);
    EXPECT_EQ(errorOf(System::openTerminalStream("/nowhere/line")), ENOENT);
}

TEST_F(TerminalTest, WithoutDescriptorsNothingIsOpened) {
    const NoMoreDescriptors none;
    EXPECT_EQ(errorOf(System::openTerminal(m_line.path().c_str())), EMFILE);
    EXPECT_EQ(errorOf(System::openTerminalStream(m_line.path().c_str())), EMFILE);
}

TEST_F(TerminalTest, SpeedsAreTheSystemsConstants) {
    for (const auto& [baud, constant] : kSpeeds) {
        termios attributes{};
        ASSERT_TRUE(System::setOutputSpeed(attributes, baud)) << baud;
        EXPECT_EQ(::cfgetospeed(&attributes), constant) << baud;
        attributes = {};
        ASSERT_TRUE(System::setInputSpeed(attributes, baud)) << baud;
        EXPECT_EQ(::cfgetispeed(&attributes), constant) << baud;
    }
}

TEST_F(TerminalTest, AnUnknownSpeedIsInvalidAndChangesNothing) {
    for (const unsigned baud : {0U, 1U, 13U, 301U, 9601U, 115201U, 4294967295U}) {
        termios attributes{};
        ASSERT_TRUE(System::setOutputSpeed(attributes, 9600));
        ASSERT_TRUE(System::setInputSpeed(attributes, 9600));
        errno = 0;
        EXPECT_EQ(errorOf(System::setOutputSpeed(attributes, baud)), EINVAL) << baud;
        EXPECT_EQ(errorOf(System::setInputSpeed(attributes, baud)), EINVAL) << baud;
        EXPECT_EQ(::cfgetospeed(&attributes), static_cast<speed_t>(B9600));
        EXPECT_EQ(::cfgetispeed(&attributes), static_cast<speed_t>(B9600));
    }
}

TEST_F(TerminalTest, RawTurnsOffWhatATerminalDoesForPeople) {
    termios attributes{};
    attributes.c_iflag = ICRNL | IXON | ISTRIP | BRKINT;
    attributes.c_oflag = OPOST | ONLCR;
    attributes.c_lflag = ECHO | ECHONL | ICANON | ISIG | IEXTEN;
    attributes.c_cflag = CREAD | CLOCAL | CSTOPB;
    EXPECT_TRUE(System::makeRaw(attributes));
    EXPECT_EQ(attributes.c_iflag, 0U);
    EXPECT_EQ(attributes.c_oflag & OPOST, 0U);
    EXPECT_EQ(attributes.c_lflag, 0U);
    EXPECT_EQ(attributes.c_cflag & (CREAD | CLOCAL | CSTOPB),
              static_cast<tcflag_t>(CREAD | CLOCAL | CSTOPB));
}
