// How many blocks of which size a device has.
#include "platform/BlockDevice.h"

#include <cerrno>

#include "NodeResults.h"

namespace {

class QnxBlockDeviceTest : public QnxTest {
protected:
    struct stat m_status {};
};

} // namespace

TEST_F(QnxBlockDeviceTest, TheFileSystemsCountIsTakenAsItIs) {
    for (const mode_t kind : {mode_t{S_IFBLK}, mode_t{S_IFREG}, mode_t{S_IFCHR}}) {
        SCOPED_TRACE(kind);
        FakeSystem::next("fstat", {0, 0, {}, [kind](void* filled) {
                                       auto& status = *static_cast<struct stat*>(filled);
                                       status.st_mode = kind;
                                       status.st_size = 12345;
                                       status.st_blksize = 512;
                                       status.st_blocks = 0x123456789;
                                   }});
        EXPECT_EQ(System::blockDeviceStatus(7, m_status), 0);
        EXPECT_EQ(m_status.st_blksize, 512);
        EXPECT_EQ(m_status.st_blocks, 0x123456789);
        EXPECT_CALLS(kLimit, "fstat 7");
    }
}

TEST_F(QnxBlockDeviceTest, AFailureIsItsErrorNumber) {
    FakeSystem::fail("fstat", EBADF);
    EXPECT_EQ(System::blockDeviceStatus(7, m_status), EBADF);
}
