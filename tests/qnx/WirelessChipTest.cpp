// A host command for the wireless chip, down to the message that carries it.
#include <array>
#include <cerrno>

#include "QnxTest.h"
#include "commands/uap_ioctl.h"

namespace {

constexpr int kBufferSize = 259;

class QnxWirelessChipTest : public QnxTest {
protected:
    QnxWirelessChipTest() { FakeSystem::next("socket", {7}); }

    int ask() { return uap_ioctl(m_buffer.data(), &m_size, kBufferSize); }

    std::array<unsigned char, kBufferSize> m_buffer = {0, 0, 0, 0, 0x03, 0x00, 0x08, 0x00, 0x01};
    int m_size = 8;
};

} // namespace

TEST_F(QnxWirelessChipTest, ACommandIsADeviceControlWithAPrivateRequestAndTheBuffer) {
    // The reply's size field: both headers, the buffer's length field and the command's code come first.
    std::vector<unsigned char> reply(16 + 28 + 6, 0);
    reply.insert(reply.end(), {0x0A, 0x00});
    FakeSystem::next("MsgSendv_r", {0, 0, reply});
    EXPECT_EQ(ask(), 1);
    EXPECT_EQ(m_size, 10);
    std::string buffer = "ff0000000300080001";
    buffer.resize(2 * kBufferSize, '0');
    EXPECT_CALLS("socket 2 2 0", "fcntl 7 2 0x1", kAnswerLimit,
                 "MsgSendv_r 7 [060110007b691cc03000000000000000]"
                 "[756170300000000000000000000000007b691cc00301000001000000][" +
                     buffer + "] 3 the same 3",
                 "close 7");
}

TEST_F(QnxWirelessChipTest, ARefusalComesBackNegativeAndTheSocketIsClosed) {
    FakeSystem::next("MsgSendv_r", {-ENODEV});
    EXPECT_EQ(ask(), -ENODEV);
    EXPECT_EQ(FakeSystem::calls().back(), "close 7");
}
