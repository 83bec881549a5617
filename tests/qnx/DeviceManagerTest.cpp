// Requests to the process that owns a device node.
#include "platform/DeviceManager.h"

#include <array>
#include <cerrno>

#include "QnxTest.h"
#include "support/ErrorNumber.h"

using System::ReplyPart;
using System::SendPart;
using ::testing::ElementsAre;
using ::testing::StartsWith;

namespace {

constexpr int kDevice = 7;

class QnxDeviceManagerTest : public QnxTest {
protected:
    int sendBlock() { return System::requestDevice(kDevice, 0x80040502, m_data.data(), m_data.size()); }

    int exchangeParts() { return System::requestDevice(kDevice, 0xC0140507, m_send, m_reply); }

    std::array<unsigned char, 2> m_header = {0xA1, 0xA2};
    std::array<unsigned char, 3> m_data = {0xB1, 0xB2, 0xB3};
    std::vector<SendPart> m_send = {{m_header.data(), m_header.size()}, {m_data.data(), m_data.size()}};
    std::vector<ReplyPart> m_reply = {{m_header.data(), m_header.size()},
                                      {m_data.data(), m_data.size()}};
};

} // namespace

TEST_F(QnxDeviceManagerTest, ANodeIsOpenedForBothDirectionsWithoutWaiting) {
    FakeSystem::next("open64", {7});
    System::Descriptor device = System::openDevice("/dev/i2c0");
    EXPECT_EQ(device.release(), 7);
    EXPECT_CALLS("open64 \"/dev/i2c0\" 0x82", "fcntl 7 2 0x1");
}

TEST_F(QnxDeviceManagerTest, WhatCannotBeOpenedIsEmptyAndSaysWhy) {
    FakeSystem::fail("open64", ENXIO);
    EXPECT_EQ(errorOf(System::openDevice("/dev/i2c0")), ENXIO);
    EXPECT_CALLS("open64 \"/dev/i2c0\" 0x82");
}

TEST_F(QnxDeviceManagerTest, OneBlockGoesWithItsSize) {
    EXPECT_EQ(sendBlock(), 0);
    EXPECT_CALLS(kAnswerLimit, "devctl 7 0x80040502 [b1b2b3] 3 null");
}

TEST_F(QnxDeviceManagerTest, OneBlockTakesWhatComesBack) {
    FakeSystem::next("devctl", {0, 0, {0xC1, 0xC2, 0xC3}});
    EXPECT_EQ(System::requestDevice(kDevice, 0x40030501, m_data.data(), m_data.size()), 0);
    EXPECT_THAT(m_data, ElementsAre(0xC1, 0xC2, 0xC3));
}

TEST_F(QnxDeviceManagerTest, SendPartsAreCountedBeforeReplyParts) {
    EXPECT_EQ(System::requestDevice(kDevice, 0x80100505, m_send, {}), 0);
    EXPECT_CALLS(kAnswerLimit, "devctlv 7 0x80100505 2 0 [a1a2][b1b2b3] nothing null");
}

TEST_F(QnxDeviceManagerTest, ARequestWithoutASendPartIsPassedOnAsItIs) {
    EXPECT_EQ(System::requestDevice(kDevice, 0xC0100506, {}, m_reply), 0);
    EXPECT_CALLS(kAnswerLimit, "devctlv 7 0xc0100506 0 2 nothing [a1a2][b1b2b3] null");
}

TEST_F(QnxDeviceManagerTest, TheReplyIsSpreadOverItsParts) {
    FakeSystem::next("devctlv", {0, 0, {0xC1, 0xC2, 0xC3, 0xC4}});
    EXPECT_EQ(exchangeParts(), 0);
    EXPECT_CALLS(kAnswerLimit, "devctlv 7 0xc0140507 2 2 [a1a2][b1b2b3] [a1a2][b1b2b3] null");
    EXPECT_THAT(m_header, ElementsAre(0xC1, 0xC2));
    EXPECT_THAT(m_data, ElementsAre(0xC3, 0xC4, 0xB3));
}

TEST_F(QnxDeviceManagerTest, WhatMustBeWholeIsTakenForWhole) {
    FakeSystem::next("devctlv", {0, 0, {0xC1}});
    EXPECT_EQ(System::requestDevice(kDevice, 0x40050501, {}, m_reply, System::ReplySize::Whole), 0);
    EXPECT_CALLS(kAnswerLimit,
                 "devctlv 7 0x40050501 0 2 nothing "
                 "[a1a2][b1b2b3] null");
    EXPECT_THAT(m_header, ElementsAre(0xC1, 0xA2));
}

TEST_F(QnxDeviceManagerTest, TheManagersResultComesBackAsItIs) {
    for (const int result : {EPERM, EIO, ENOMEM, EFAULT, EINVAL, EBADF, EINTR, ENOTTY, 0x7001}) {
        SCOPED_TRACE(result);
        FakeSystem::next("devctl", {result});
        FakeSystem::next("devctlv", {result});
        EXPECT_EQ(sendBlock(), result);
        EXPECT_EQ(exchangeParts(), result);
    }
}

TEST_F(QnxDeviceManagerTest, AManagerThatDoesNotAnswerIsGivenUp) {
    FakeSystem::next("devctl", {ETIMEDOUT});
    FakeSystem::next("devctlv", {ETIMEDOUT});
    EXPECT_EQ(sendBlock(), ETIMEDOUT);
    EXPECT_EQ(exchangeParts(), ETIMEDOUT);
    EXPECT_CALLS(kAnswerLimit, StartsWith("devctl 7 "), kAnswerLimit, StartsWith("devctlv 7 "));
}

TEST_F(QnxDeviceManagerTest, ARequestThatCannotBeLimitedIsNotMade) {
    FakeSystem::fail("TimerTimeout", EAGAIN);
    FakeSystem::fail("TimerTimeout", EAGAIN);
    EXPECT_EQ(sendBlock(), EAGAIN);
    EXPECT_EQ(exchangeParts(), EAGAIN);
    EXPECT_CALLS(kAnswerLimit, kAnswerLimit);
}
