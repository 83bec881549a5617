// Waiting for a device's path.
#include "platform/PathWait.h"

#include <cerrno>

#include "QnxTest.h"

namespace {

class QnxPathWaitTest : public QnxTest {
protected:
    System::PathWait m_wait;
};

} // namespace

TEST_F(QnxPathWaitTest, APathIsWaitedForAndPolledOnceASecond) {
    EXPECT_TRUE(m_wait.waitFor("/dev/usbserialadapter1", std::chrono::milliseconds(1000)));
    EXPECT_CALLS("waitfor \"/dev/usbserialadapter1\" 1000 1000");
}

TEST_F(QnxPathWaitTest, APathThatDoesNotAppearIsNotThere) {
    for (const int error : {ENOENT, ENOTDIR, EINTR}) {
        FakeSystem::fail("waitfor", error);
        EXPECT_FALSE(m_wait.waitFor("/dev/ser1", std::chrono::milliseconds(1000))) << error;
    }
}
