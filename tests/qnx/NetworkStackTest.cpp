// The message to the network stack.
#include "platform/NetworkStack.h"

#include <array>
#include <cerrno>

#include "QnxTest.h"
#include "support/ErrorNumber.h"

using ::testing::ElementsAre;

namespace {

constexpr int kSocket = 7;

class QnxNetworkStackTest : public QnxTest {
protected:
    int message() {
        return System::messageInterface(kSocket, "uap0",
                                        {{m_header.data(), m_header.size()},
                                         {m_request.data(), m_request.size()},
                                         {m_data.data(), m_data.size()}});
    }

    std::array<unsigned char, 2> m_header = {0xA1, 0xA2};
    std::array<unsigned char, 1> m_request = {0xB1};
    std::array<unsigned char, 3> m_data = {0xC1, 0xC2, 0xC3};
};

} // namespace

TEST_F(QnxNetworkStackTest, ADatagramSocketIsKeptFromOtherPrograms) {
    FakeSystem::next("socket", {7});
    System::Descriptor socket = System::openDatagramSocket();
    EXPECT_EQ(socket.release(), 7);
    EXPECT_CALLS("socket 2 2 0", "fcntl 7 2 0x1");
}

TEST_F(QnxNetworkStackTest, ASocketThatIsRefusedIsEmptyAndSaysWhy) {
    FakeSystem::fail("socket", EAFNOSUPPORT);
    EXPECT_EQ(errorOf(System::openDatagramSocket()), EAFNOSUPPORT);
}

TEST_F(QnxNetworkStackTest, TheSameThreePartsServeBothWays) {
    FakeSystem::next("MsgSendv_r", {0, 0, {1, 2, 3, 4, 5}});
    EXPECT_EQ(message(), 0);
    EXPECT_CALLS(kAnswerLimit, "MsgSendv_r 7 [a1a2][b1][c1c2c3] 3 the same 3");
    EXPECT_THAT(m_header, ElementsAre(1, 2));
    EXPECT_THAT(m_request, ElementsAre(3));
    EXPECT_THAT(m_data, ElementsAre(4, 5, 0xC3));
}

TEST_F(QnxNetworkStackTest, AFailureIsNegativeAndErrnoHasItAsWell) {
    for (const int error : {ENOTTY, EINVAL, EBADF, EINTR, ETIMEDOUT}) {
        errno = 0;
        FakeSystem::next("MsgSendv_r", {-error});
        EXPECT_EQ(message(), -error);
        EXPECT_EQ(errno, error);
    }
}

TEST_F(QnxNetworkStackTest, ADriversOwnResultIsAFailureToo) {
    FakeSystem::next("MsgSendv_r", {1});
    EXPECT_EQ(message(), -1);
    EXPECT_EQ(errno, 1);
}

TEST_F(QnxNetworkStackTest, AMessageThatCannotBeLimitedIsNotSent) {
    FakeSystem::fail("TimerTimeout", EAGAIN);
    EXPECT_EQ(message(), -EAGAIN);
    EXPECT_CALLS(kAnswerLimit);
}
