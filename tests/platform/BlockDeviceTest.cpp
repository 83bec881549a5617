#include "platform/BlockDevice.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "support/DeviceControl.h"
#include "support/ErrorNumber.h"
#include "support/Rows.h"
#include "wire/Descriptor.h"

using System::blockDeviceStatus;
using System::Descriptor;

namespace {

constexpr blksize_t kPage = 4096;

/// A block device that does not exist: the system is asked for it in vain, so this answers instead.
struct MadeUpDevice {
    int descriptor = -1; ///< what it has the place of; -1 while there is none
    int sectorBytes = 0;
    std::uint64_t bytes = 0;
    int sectorError = 0;
    int sizeError = 0;
};

MadeUpDevice s_device;

int refuse(int error) {
    errno = error;
    return -1;
}

} // namespace

extern "C" {

int REAL_FSTAT(int descriptor, struct stat* status);
int WRAP_FSTAT(int descriptor, struct stat* status) {
    const int result = REAL_FSTAT(descriptor, status);
    if (descriptor >= 0 && descriptor == s_device.descriptor)
        status->st_mode = (status->st_mode & ~static_cast<mode_t>(S_IFMT)) | S_IFBLK;
    return result;
}

} // extern "C"

std::optional<int> onDeviceControl(int descriptor, unsigned long request, void* argument) {
    if (descriptor < 0 || descriptor != s_device.descriptor)
        return std::nullopt;
    if (request == BLKSSZGET) {
        *static_cast<int*>(argument) = s_device.sectorBytes;
        return s_device.sectorError == 0 ? 0 : refuse(s_device.sectorError);
    }
    if (request == BLKGETSIZE64) {
        *static_cast<std::uint64_t*>(argument) = s_device.bytes;
        return s_device.sizeError == 0 ? 0 : refuse(s_device.sizeError);
    }
    return refuse(ENOTTY);
}

namespace {

/// A file in memory.
Descriptor makeFile(off_t bytes) {
    Descriptor file(::memfd_create("device", MFD_CLOEXEC));
    EXPECT_TRUE(file);
    EXPECT_EQ(::ftruncate(file.get(), bytes), 0);
    return file;
}

class MadeUpBlockDeviceTest : public ::testing::Test {
protected:
    MadeUpBlockDeviceTest() : m_place(makeFile(0)) { s_device.descriptor = m_place.get(); }
    ~MadeUpBlockDeviceTest() override { s_device = MadeUpDevice(); }

    int status(struct stat& result) const { return blockDeviceStatus(m_place.get(), result); }

private:
    Descriptor m_place;
};

} // namespace

TEST(BlockDeviceTest, AFileIsCountedInWholeBlocksOfItsOwnSize) {
    const Rows<off_t, blkcnt_t> rows = {{0, 0},
                                        {1, 0},
                                        {kPage - 1, 0},
                                        {kPage, 1},
                                        {kPage + 1, 1},
                                        {15 * kPage, 15},
                                        {(off_t{1} << 32) + kPage, (blkcnt_t{1} << 20) + 1},
                                        {off_t{1} << 44, blkcnt_t{1} << 32}};
    for (const auto& [bytes, blocks] : rows) {
        SCOPED_TRACE(bytes);
        const Descriptor file = makeFile(bytes);
        struct stat status {};
        EXPECT_EQ(blockDeviceStatus(file.get(), status), 0);
        EXPECT_EQ(status.st_blksize, kPage);
        EXPECT_EQ(status.st_blocks, blocks);
        EXPECT_EQ(status.st_size, bytes);
    }
}

TEST(BlockDeviceTest, HolesCountAsMuchAsWhatIsWritten) {
    const Descriptor file = makeFile(10 * kPage);
    ASSERT_EQ(::pwrite(file.get(), "x", 1, 3 * kPage), 1);
    struct stat status {};
    EXPECT_EQ(blockDeviceStatus(file.get(), status), 0);
    EXPECT_EQ(status.st_blocks, 10);
}

TEST(BlockDeviceTest, WhatIsNoOpenDescriptorIsReported) {
    struct stat status {};
    EXPECT_EQ(blockDeviceStatus(-1, status), EBADF);
    int number = -1;
    {
        const Descriptor file = makeFile(kPage);
        number = file.get();
    }
    EXPECT_EQ(blockDeviceStatus(number, status), EBADF);
}

TEST(BlockDeviceTest, WhatHasNoBlocksIsToldAsItIs) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const Descriptor from(ends[0]);
    const Descriptor into(ends[1]);
    const Descriptor null(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    for (const int descriptor : {from.get(), into.get(), null.get()}) {
        struct stat status {};
        EXPECT_EQ(blockDeviceStatus(descriptor, status), 0);
        EXPECT_EQ(status.st_blocks, 0);
    }
    struct stat plain {};
    struct stat status {};
    const Descriptor folder(::open("/", O_RDONLY | O_CLOEXEC | O_DIRECTORY));
    ASSERT_EQ(::fstat(folder.get(), &plain), 0);
    EXPECT_EQ(blockDeviceStatus(folder.get(), status), 0);
    EXPECT_EQ(status.st_blocks, plain.st_blocks);
    EXPECT_EQ(status.st_blksize, plain.st_blksize);
}

TEST(BlockDeviceTest, AFileIsOpenedAsItIsAsked) {
    for (const int access : {O_RDONLY, O_RDWR}) {
        const Descriptor file = System::openBlockDevice("/proc/self/comm", access);
        ASSERT_TRUE(file);
        EXPECT_EQ(::fcntl(file.get(), F_GETFL) & O_ACCMODE, access);
        EXPECT_NE(::fcntl(file.get(), F_GETFD) & FD_CLOEXEC, 0);
    }
    EXPECT_EQ(errorOf(System::openBlockDevice("/nothing", O_RDONLY)), ENOENT);
}

// Opened without waiting, a drive without a medium is open, too.
TEST_F(MadeUpBlockDeviceTest, IsGivenTheTimeToGetHoldOfItsMedium) {
    s_device.descriptor = Descriptor(::open("/proc/self/comm", O_RDONLY | O_CLOEXEC)).get();
    const Descriptor device = System::openBlockDevice("/proc/self/comm", O_RDWR);
    ASSERT_TRUE(device);
    EXPECT_EQ(::fcntl(device.get(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_EQ(::fcntl(device.get(), F_GETFL) & O_ACCMODE, O_RDWR);
    EXPECT_NE(::fcntl(device.get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(MadeUpBlockDeviceTest, ItsSectorsAreItsBlocks) {
    const Rows<int, std::uint64_t, blkcnt_t> rows = {{512, 0, 0},
                                                     {512, 511, 0},
                                                     {512, 512 * 15, 15},
                                                     {512, 512 * 15 + 511, 15},
                                                     {2048, 2048 * 300, 300},
                                                     {4096, 4096, 1},
                                                     {512, std::uint64_t{4} << 40, blkcnt_t{1} << 33}};
    for (const auto& [sectorBytes, bytes, blocks] : rows) {
        SCOPED_TRACE(bytes);
        s_device.sectorBytes = sectorBytes;
        s_device.bytes = bytes;
        struct stat result {};
        EXPECT_EQ(status(result), 0);
        EXPECT_EQ(result.st_blksize, sectorBytes);
        EXPECT_EQ(result.st_blocks, blocks);
    }
}

TEST_F(MadeUpBlockDeviceTest, WhatItDoesNotTellIsReported) {
    s_device.sectorBytes = 512;
    s_device.bytes = 5120;
    struct stat result {};
    s_device.sectorError = ENOMEDIUM;
    EXPECT_EQ(status(result), ENOMEDIUM);
    s_device.sectorError = 0;
    s_device.sizeError = EIO;
    EXPECT_EQ(status(result), EIO);
    s_device.sizeError = 0;
    EXPECT_EQ(status(result), 0);
    EXPECT_EQ(result.st_blocks, 10);
}
