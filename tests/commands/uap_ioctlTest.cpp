// The message that carries a host command to the wireless
// chip's driver, and what it tells when it fails.
#include "commands/uap_ioctl.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include "core/StandardStream.h"
#include "support/DescriptorLimit.h"
#include "support/ErrorOutput.h"
#include "support/WlanUnit.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr int kBufferSize = 259;

class uap_ioctlTest : public WlanUnit {
protected:
    uap_ioctlTest() {
        const Bytes command = hostMessage(0x0003, 9, 0, {0xAB});
        std::copy(command.begin(), command.end(), m_buffer.begin() + 4);
    }
    ~uap_ioctlTest() override { debug_level = 0; }

    /// Runs it and notes what it tells.
    int call() {
        int result = 0;
        m_told = errorOutputOf([&] { result = uap_ioctl(m_buffer.data(), &m_size, kBufferSize); });
        return result;
    }

    Bytes message() const { return {m_buffer.begin() + 4, m_buffer.begin() + 4 + m_size}; }

    std::array<unsigned char, kBufferSize> m_buffer{};
    int m_size = 9;
    std::string m_told;
};

} // namespace

TEST_F(uap_ioctlTest, TheReplyTakesTheCommandsPlace) {
    const Bytes sent = wlanRequest(message());
    const Bytes reply = hostMessage(0x8003, 9, 0, counting(247));
    m_manager->willAnswer(0, wlanReply(reply));
    EXPECT_EQ(call(), 1);
    EXPECT_EQ(m_size, 255);
    EXPECT_EQ(message(), reply);
    EXPECT_EQ(m_told, "");
    EXPECT_THAT(m_manager->requests(), ElementsAre(sent));
    EXPECT_TRUE(m_manager->isLeftAlone()) << "nothing is kept open";
}

TEST_F(uap_ioctlTest, TheRestOfTheBufferIsSentAsItIs) {
    m_buffer.fill(0x5A);
    m_manager->willAnswer(0, wlanReply(hostMessage(0x8003, 9, 0)));
    EXPECT_EQ(call(), 1);
    EXPECT_EQ(m_manager->lastRequest(), wlanRequest(Bytes(255, 0x5A)));
}

TEST_F(uap_ioctlTest, AReplyBeyondTheBufferIsTold) {
    for (const std::uint16_t size : std::vector<std::uint16_t>{256, 300, 0xFFFF}) {
        m_size = 9;
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8003, size, 9, 0, {})));
        EXPECT_EQ(call(), 0);
        EXPECT_EQ(m_told, "ERR:Response size (" + std::to_string(size) +
                              ") greater than buffer size (259)! Aborting!\n");
    }
}

TEST_F(uap_ioctlTest, ACommandBeyondTheBufferIsTold) {
    m_size = kBufferSize + 1;
    EXPECT_EQ(call(), 0);
    EXPECT_EQ(m_told, "response_size should not less than cmd buffer size\n");
    EXPECT_EQ(m_size, kBufferSize + 1);
    EXPECT_EQ(m_manager->connections(), 0);
    m_size = kBufferSize;
    m_manager->willAnswer(0, wlanReply(hostMessage(0x8003, 9, 0)));
    EXPECT_EQ(call(), 1);
}

TEST_F(uap_ioctlTest, WhatTheManagerFailsWithComesBackNegative) {
    const Rows<int, int> rows = {
        {1, 1}, {5, 5}, {-5, 5}, {-1, 1}, {INT32_MIN, EPROTO}, {INT32_MAX, INT32_MAX}};
    for (const auto& [result, error] : rows) {
        m_manager->willAnswer(result, wlanReply(hostMessage(0x8003, 9, 0)));
        EXPECT_EQ(call(), -error);
        EXPECT_EQ(m_told, "uap_ioctl(): MsgSendv_r() failed return " + std::to_string(-error) +
                              ", errno " + std::to_string(error) + "\n");
        EXPECT_EQ(m_size, 9);
    }
}

TEST_F(uap_ioctlTest, WithoutAManagerTheKernelHasNoSuchInterface) {
    removeManager();
    EXPECT_EQ(call(), -ENODEV);
    EXPECT_EQ(m_told, "uap_ioctl(): MsgSendv_r() failed return -19, errno 19\n");
}

TEST_F(uap_ioctlTest, WithoutASocketNothingIsSent) {
    StandardStream::error(); // making it takes none, but a sanitizer that looks on does
    int result = 1;
    EXPECT_EQ(errorOutputOf([&] {
                  const NoMoreDescriptors limit;
                  result = uap_ioctl(m_buffer.data(), &m_size, kBufferSize);
              }),
              "ERR:Cannot open socket\n");
    EXPECT_EQ(result, 0);
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(uap_ioctlTest, FromDebugLevelTwoTheSizesAreTold) {
    for (const int level : {0, 1, 2, 3}) {
        debug_level = level;
        m_size = 9;
        m_manager->willAnswer(0, wlanReply(hostMessage(0x8003, 9, 0)));
        EXPECT_EQ(call(), 1);
        EXPECT_EQ(m_told, level > 1 ? "buf size = 259, *size = 9\n" : "");
    }
}

TEST_F(uap_ioctlTest, TheInterfaceHasItsName) {
    EXPECT_STREQ(dev_name, "uap0");
}
