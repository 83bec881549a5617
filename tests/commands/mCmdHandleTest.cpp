// Opening and closing a block device.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "support/BlockHandleFixture.h"
#include "support/DescriptorLimit.h"
#include "support/FreshProcess.h"
#include "support/RefusedCalls.h"
#include "wire/Descriptor.h"

namespace fs = std::filesystem;

namespace {

constexpr char kNotInserted[] = "Device not inserted";
constexpr char kNotProperlyOpened[] = "Device is not properly opened, file descriptor is invalid";

/// How many blocks the device is taken to have, found by reading nothing where there is one.
unsigned blocksOn(mCmd::Handle& device) {
    unsigned blocks = 0;
    unsigned bytes = 0;
    while (!device.read(bytes, blocks, 0, nullptr, 0).failed())
        ++blocks;
    return blocks;
}

class mCmdHandleTest : public BlockHandleFixture {
protected:
    void open() { expectSuccess(m_device.open()); }
    void close() { expectSuccess(m_device.close()); }
    void expectNotProperlyOpened() {
        unsigned bytes = 0;
        expectFailure(m_device.read(bytes, 0, 0, nullptr, 0), kNotProperlyOpened);
    }

    mCmd::Handle m_device = writable();
};

} // namespace

TEST_F(mCmdHandleTest, AnAbsentDeviceIsNotInserted) {
    expectFailure(m_device.open(), kNotInserted);
    expectFailure(m_device.close(), kNotInserted);
    fs::create_symlink(in("nowhere"), path());
    expectFailure(m_device.open(), kNotInserted);
    expectFailure(m_device.close(), kNotInserted);
}

TEST_F(mCmdHandleTest, IsOpenedForWhatItIsDeclaredFor) {
    const BlockFile file(path(), 3);
    for (const bool isWritable : {false, true}) {
        SCOPED_TRACE(isWritable);
        {
            mCmd::Handle device(kCard, path(), isWritable);
            EXPECT_EQ(descriptorOf(path()), -1);
            expectSuccess(device.open());
            const int descriptor = descriptorOf(path());
            ASSERT_NE(descriptor, -1);
            EXPECT_EQ(::fcntl(descriptor, F_GETFL) & O_ACCMODE, isWritable ? O_RDWR : O_RDONLY);
            EXPECT_EQ(::fcntl(descriptor, F_GETFD), FD_CLOEXEC);
        }
        EXPECT_EQ(descriptorOf(path()), -1) << "it is closed with its handle";
    }
}

TEST_F(mCmdHandleTest, IsOpenedOnce) {
    BlockFile file(path(), 3);
    open();
    const int descriptor = descriptorOf(path());
    file.resize(5 * BlockFile::kBlock);
    open();
    EXPECT_EQ(blocksOn(m_device), 3u) << "as it was when it was opened";
    close();
    EXPECT_EQ(descriptorOf(path()), -1);
    EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1);
}

TEST_F(mCmdHandleTest, IsLookedAtAnewWhenItIsOpenedAgain) {
    BlockFile file(path(), 3);
    open();
    EXPECT_EQ(blocksOn(m_device), 3u);
    close();
    EXPECT_EQ(blocksOn(m_device), 0u);
    file.resize(5 * BlockFile::kBlock + 1);
    open();
    EXPECT_EQ(blocksOn(m_device), 5u);
}

TEST_F(mCmdHandleTest, ClosingWhatIsNotOpenSucceeds) {
    const BlockFile file(path(), 3);
    close();
    open();
    close();
    close();
}

TEST_F(mCmdHandleTest, ARemovedDeviceStaysOpenUntilItIsOpenedAgain) {
    const std::string removed = in("removed");
    { const BlockFile file(path(), 3); }
    open();
    fs::rename(path(), removed);
    expectFailure(m_device.close(), kNotInserted);
    EXPECT_NE(descriptorOf(removed), -1);
    expectFailure(m_device.open(), kNotInserted);
    EXPECT_EQ(descriptorOf(removed), -1);

    fs::rename(removed, path());
    expectNotProperlyOpened();
    open();
    EXPECT_EQ(blocksOn(m_device), 3u);
}

TEST_F(mCmdHandleTest, AFailedOpenIsReportedByItsErrorNumber) {
    fs::create_directory(path());
    expectFailure(m_device.open(), "Failed to open Device " + path() + ": Is a directory", EISDIR);
    close();
    fs::remove(path());

    const BlockFile file(path(), 3);
    {
        const NoMoreDescriptors none;
        expectFailure(m_device.open(), "Failed to open Device " + path() + ": Too many open files",
                      EMFILE);
    }
    expectNotProperlyOpened();
    open();
    EXPECT_EQ(blocksOn(m_device), 3u);
}

TEST_F(mCmdHandleTest, WhatHasNoBlocksOpensAndHoldsNothing) {
    ASSERT_EQ(::mkfifo(path().c_str(), S_IRUSR | S_IWUSR), 0);
    open();
    unsigned bytes = 0;
    char byte = 'z';
    expectFailure(m_device.read(bytes, 0, 1, &byte, 1), "Startblock does not Exist on Device");
    expectFailure(m_device.write(bytes, 0, 1, &byte, 1), "Startblock does not Exist on Device");
    close();

    mCmd::Handle null(kCard, "/dev/null", true);
    expectSuccess(null.open());
    expectFailure(null.read(bytes, 0, 0, &byte, 1), "Startblock does not Exist on Device");
    expectFailure(null.write(bytes, 0, 0, &byte, 1), "Startblock does not Exist on Device");
    EXPECT_EQ(byte, 'z');
}

TEST_F(mCmdHandleTest, AClosedDeviceHasNoInformation) {
    const BlockFile file(path(), 3);
    expectFailure(m_device.prepareStatInfo(), "Device is not open");
    open();
    expectSuccess(m_device.prepareStatInfo());
    close();
    expectFailure(m_device.prepareStatInfo(), "Device is not open");
}

TEST_F(mCmdHandleTest, WhatCouldNotBeLookedAtIsLookedAtWhenItIsOpenedAgain) {
    const BlockFile file(path(), 3);
    open();
    const int descriptor = descriptorOf(path());
    const System::Descriptor other(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
    ASSERT_EQ(::close(descriptor), 0);
    EXPECT_EQ(m_device.prepareStatInfo().code, EBADF);
    ASSERT_EQ(::dup2(other.get(), descriptor), descriptor);
    open();
    EXPECT_EQ(blocksOn(m_device), 3u);
}

TEST_F(mCmdHandleTest, InformationIsTakenAnew) {
    BlockFile file(path(), 3);
    open();
    file.resize(7 * BlockFile::kBlock);
    expectSuccess(m_device.prepareStatInfo());
    EXPECT_EQ(blocksOn(m_device), 7u);
}

TEST_F(mCmdHandleTest, ADescriptorThatIsGoneIsNoFailureToClose) {
    const BlockFile file(path(), 3);
    open();
    ASSERT_EQ(::close(descriptorOf(path())), 0);
    expectFailure(m_device.prepareStatInfo(),
                  "Failed to get Device Information for " + path() + ": Bad file descriptor", EBADF);
    close();
    expectFailure(m_device.prepareStatInfo(), "Device is not open");
    open();
    EXPECT_EQ(blocksOn(m_device), 3u);
}

// What the system refuses, it refuses to the end of the process.

TEST(mCmdHandleRefusalTest, AFailedCloseIsReportedByItsErrorNumber) {
    inFreshProcess([] {
        mCmd::Handle device(177, "/proc/self/exe", false);
        expectSuccess(device.open());
        refuseSystemCalls({SYS_close}, EIO);
        expectFailure(device.close(), "Failed to close Device /proc/self/exe: Input/output error", EIO);
        expectSuccess(device.close());
    });
}

TEST(mCmdHandleRefusalTest, FailingToLookAtItIsReportedByItsErrorNumber) {
    inFreshProcess([] {
        mCmd::Handle device(177, "/proc/self/exe", false);
        refuseSystemCalls(kFileStatusCalls, ENOMEM);
        expectFailure(device.open(),
                      "Failed to get Device Information for /proc/self/exe: Cannot allocate memory",
                      ENOMEM);
        expectSuccess(device.open());
        unsigned bytes = 0;
        expectFailure(device.read(bytes, 0, 0, nullptr, 0), kNotProperlyOpened);
        expectSuccess(device.close());
    });
}
