// Moving blocks between a device and memory. It is long as both directions are tried at each of their
// limits.
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>

#include "support/BlockHandleFixture.h"
#include "support/Rows.h"
#include "wire/Descriptor.h"

namespace fs = std::filesystem;

namespace {

constexpr unsigned kBlocks = 15;
constexpr std::uint32_t kBlock = BlockFile::kBlock;
constexpr unsigned kAtFourGiB = 0x100000;

constexpr char kNotInserted[] = "Device not inserted";
constexpr char kNoStartBlock[] = "Startblock does not Exist on Device";
constexpr char kNoEndBlock[] = "Endblock does not exist on Device";
constexpr char kNoSpace[] = "Not Enough Memory to save read Data";
constexpr char kNoData[] = "Number of Bytes to Read overrides internal Memory";
constexpr char kReadInvalid[] = "Device is not properly opened, file descriptor is invalid";
constexpr char kWriteInvalid[] = "Device is not proprely opened, file descriptor is invalid";

void expectOutcome(const DeviceResult& result, const char* failure) {
    if (failure == nullptr)
        expectSuccess(result);
    else
        expectFailure(result, failure);
}

/// A device of fifteen blocks, filled with 'a', 'b' and so on, and memory for it.
class mCmdTransferTest : public BlockHandleFixture {
protected:
    mCmdTransferTest()
        : m_file(path(), kBlocks), m_device(writable()), m_memory(blocksOf('.', kBlocks)) {
        for (unsigned block = 0; block < kBlocks; ++block)
            m_file.fill(block, static_cast<char>('a' + block));
        m_before = content();
        expectSuccess(m_device.open());
        m_descriptor = descriptorOf(path());
    }

    std::string content() const { return m_file.blocks(0, kBlocks + 1); }
    bool isUntouched() const { return m_memory == blocksOf('.', kBlocks); }

    DeviceResult read(unsigned first, int count, int space = INT_MAX) {
        return m_device.read(m_bytes, first, count, m_memory.data(), space);
    }
    DeviceResult write(unsigned first, int count, int space = INT_MAX) {
        return m_device.write(m_bytes, first, count, m_memory.data(), space);
    }

    /// Makes the device a much larger one, without content.
    void enlarge(std::uint64_t blocks) {
        m_file.resize(0);
        m_file.resize(blocks * kBlock);
        expectSuccess(m_device.prepareStatInfo());
    }

    /// From now on the device's descriptor is one for `target`.
    void divert(const char* target, int flags) {
        const System::Descriptor other(::open(target, flags | O_CLOEXEC));
        ASSERT_TRUE(other) << target;
        ASSERT_NE(::dup2(other.get(), m_descriptor), -1);
    }

    BlockFile m_file;
    mCmd::Handle m_device;
    std::string m_memory;
    std::string m_before;
    unsigned m_bytes = 0;
    int m_descriptor = -1; ///< as the device was opened first
};

} // namespace

TEST_F(mCmdTransferTest, ReadsWholeBlocks) {
    expectSuccess(read(3, 2, 2 * kBlock));
    EXPECT_EQ(m_bytes, 2 * kBlock);
    EXPECT_EQ(m_memory, blocksOf('d') + blocksOf('e') + blocksOf('.', kBlocks - 2));
    EXPECT_EQ(content(), m_before);
    expectSuccess(read(0, 1));
    EXPECT_EQ(m_bytes, kBlock);
    EXPECT_EQ(m_memory, blocksOf('a') + blocksOf('e') + blocksOf('.', kBlocks - 2));
}

TEST_F(mCmdTransferTest, WritesWholeBlocks) {
    expectSuccess(write(3, 2, 2 * kBlock));
    EXPECT_EQ(m_bytes, 2 * kBlock);
    std::string expected = m_before;
    expected.replace(3 * kBlock, 2 * kBlock, blocksOf('.', 2));
    EXPECT_EQ(content(), expected);
    EXPECT_TRUE(isUntouched());
}

TEST_F(mCmdTransferTest, TheLastBlockIsOutOfReach) {
    const Rows<unsigned, int, const char*> rows = {
        {0, 14, nullptr},
        {0, 15, kNoEndBlock},
        {10, 4, nullptr},
        {10, 5, kNoEndBlock},
        {10, 10, kNoEndBlock},
        {13, 1, nullptr},
        {13, 2, kNoEndBlock},
        {14, 1, kNoEndBlock},
        {14, 0, nullptr},
        {0, 0, nullptr},
        {15, 0, kNoStartBlock},
        {15, 1, kNoStartBlock},
        {16, -2, kNoStartBlock},
        {0xFFFFFFFF, 1, kNoStartBlock},
        {0xFFFFFFFF, 2, kNoStartBlock},
        {0x80000000, 0, kNoStartBlock},
        {0, -1, kNoEndBlock},
        {1, -1, kNoEndBlock},
        {2, -1, kNoEndBlock},
        {14, -14, kNoEndBlock},
        {0, INT_MAX, kNoEndBlock},
        {0, INT_MIN, kNoEndBlock},
    };
    for (const auto& [first, count, failure] : rows) {
        SCOPED_TRACE(std::to_string(first) + ", " + std::to_string(count));
        const auto length = static_cast<std::size_t>(failure == nullptr ? count : 0) * kBlock;
        m_memory = blocksOf('.', kBlocks);
        expectOutcome(read(first, count), failure);
        EXPECT_EQ(m_memory.substr(0, length), m_before.substr(first * kBlock % m_before.size(), length));
        EXPECT_EQ(m_memory.substr(length), blocksOf('.', kBlocks).substr(length));
        expectOutcome(write(first, count), failure);
        EXPECT_EQ(content(), m_before) << "it gets back what it gave, or nothing";
        if (failure == nullptr) {
            EXPECT_EQ(m_bytes, length);
        }
    }
}

TEST_F(mCmdTransferTest, AnEmptyDeviceHasNoBlocks) {
    enlarge(0);
    expectFailure(read(0, 0), kNoStartBlock);
    expectFailure(write(0, 1), kNoStartBlock);
    enlarge(1);
    expectSuccess(read(0, 0));
    EXPECT_EQ(m_bytes, 0u);
    expectFailure(read(0, 1), kNoEndBlock);
}

TEST_F(mCmdTransferTest, MovesNoMoreThanThereIsSpaceFor) {
    const Rows<int, int, bool> rows = {
        {0, 0, true},
        {0, -1, false},
        {1, 4096, true},
        {1, 4095, false},
        {1, 0, false},
        {1, -1, false},
        {1, INT_MIN, false},
        {2, 4096, false},
        {0x7FFFF, 0x7FFFF000 - 1, false},
        {0x80000, INT_MAX, false}, // 2 GiB
        {0x100000, 4096, false},   // 4 GiB: nothing, in 32 bits
        {0x100000, INT_MAX, false},
        {0x100001, INT_MAX, false},   // and one block
        {0x10000001, INT_MAX, false}, // 1 TiB and one block
        {INT_MAX, INT_MAX, false},
    };
    enlarge(0xFFFFFFFF);
    for (const auto& [count, space, fits] : rows) {
        SCOPED_TRACE(std::to_string(count) + ", " + std::to_string(space));
        m_memory = blocksOf('.', kBlocks);
        expectOutcome(write(0, count, space), fits ? nullptr : kNoData);
        EXPECT_EQ(m_file.block(0), blocksOf(fits && count > 0 ? '.' : '\0'));
        m_file.fill(0, '\0');
        expectOutcome(read(0, count, space), fits ? nullptr : kNoSpace);
        EXPECT_EQ(m_memory.front(), fits && count > 0 ? '\0' : '.');
        EXPECT_EQ(m_memory.substr(kBlock), blocksOf('.', kBlocks - 1));
    }
}

TEST_F(mCmdTransferTest, PositionsWrapAtFourGiB) {
    enlarge(2 * kAtFourGiB + 4);
    m_file.fill(1, 'l');
    m_file.fill(kAtFourGiB - 1, 'b');
    m_file.fill(kAtFourGiB, 'h');
    m_file.fill(kAtFourGiB + 1, 'H');
    expectSuccess(read(kAtFourGiB - 1, 1));
    EXPECT_EQ(m_memory.substr(0, kBlock), blocksOf('b'));
    expectSuccess(read(kAtFourGiB - 1, 2));
    EXPECT_EQ(m_memory.substr(0, 2 * kBlock), blocksOf('b') + blocksOf('h')) << "only the start wraps";
    expectSuccess(read(kAtFourGiB + 1, 1));
    EXPECT_EQ(m_memory.substr(0, kBlock), blocksOf('l'));
    expectSuccess(read(2 * kAtFourGiB + 1, 1));
    EXPECT_EQ(m_memory.substr(0, kBlock), blocksOf('l'));
    m_memory = blocksOf('w', kBlocks);
    expectSuccess(write(kAtFourGiB + 1, 1));
    EXPECT_EQ(m_bytes, kBlock);
    EXPECT_EQ(m_file.block(1), blocksOf('w'));
    EXPECT_EQ(m_file.block(kAtFourGiB + 1), blocksOf('H'));
}

TEST_F(mCmdTransferTest, AVeryLargeDeviceIsNotCheckedAgainstItsSize) {
    constexpr std::uint64_t kUnchecked = std::uint64_t{1} << 32;
    // In memory: not every file system has files of this size.
    const System::Descriptor large(::memfd_create("device", MFD_CLOEXEC));
    fs::remove(path());
    fs::create_symlink("/proc/self/fd/" + std::to_string(large.get()), path());
    expectSuccess(m_device.close());
    m_file.resize((kUnchecked - 1) * kBlock);
    expectSuccess(m_device.open());
    m_file.fill(kAtFourGiB - 1, 'e');
    expectFailure(read(0xFFFFFFFF, 1), kNoStartBlock);
    expectFailure(read(0xFFFFFFFE, 1), kNoEndBlock);
    expectSuccess(read(0xFFFFFFFD, 1));

    m_file.resize(kUnchecked * kBlock);
    expectSuccess(m_device.prepareStatInfo());
    expectSuccess(read(0xFFFFFFFF, 1));
    EXPECT_EQ(m_bytes, kBlock);
    EXPECT_EQ(m_memory.substr(0, kBlock), blocksOf('e'));
    expectSuccess(read(0xFFFFFFFF, 2));
    EXPECT_EQ(m_memory.substr(0, 2 * kBlock), blocksOf('e') + blocksOf('\0'));
    expectFailure(read(0, -1), kNoSpace);
    expectFailure(read(0xFFFFFFFF, INT_MIN), kNoSpace);
    expectFailure(write(1, -1), kNoData);
}

TEST_F(mCmdTransferTest, ChecksInThisOrder) {
    mCmd::Handle disk = readOnly();
    const auto readDisk = [&](unsigned first, int count, int space) {
        return disk.read(m_bytes, first, count, m_memory.data(), space);
    };
    const auto writeDisk = [&](unsigned first, int count, int space) {
        return disk.write(m_bytes, first, count, m_memory.data(), space);
    };
    expectFailure(readDisk(99, 99, -1), kReadInvalid);
    expectFailure(writeDisk(99, 99, -1), kWriteInvalid);
    expectSuccess(disk.open());
    expectFailure(writeDisk(99, 99, -1), "Device is Read-Only declared");
    expectFailure(readDisk(99, 99, -1), kNoStartBlock);
    expectFailure(write(99, 99, -1), kNoStartBlock);
    expectFailure(readDisk(1, 99, -1), kNoEndBlock);
    expectFailure(write(1, 99, -1), kNoEndBlock);
    expectFailure(readDisk(1, 1, -1), kNoSpace);
    expectFailure(write(1, 1, -1), kNoData);
    expectSuccess(readDisk(1, 1, kBlock));
    fs::remove(path());
    expectFailure(readDisk(99, 99, -1), kNotInserted);
    expectFailure(writeDisk(99, 99, -1), kNotInserted);
    expectFailure(write(99, 99, -1), kNotInserted);
}

TEST_F(mCmdTransferTest, ADescriptorThatIsGoneIsReported) {
    ASSERT_EQ(::close(m_descriptor), 0);
    expectFailure(read(0, 1), kReadInvalid);
    expectFailure(write(0, 1), kWriteInvalid);
    EXPECT_TRUE(isUntouched());
}

TEST_F(mCmdTransferTest, WhatCannotBeSoughtInIsReported) {
    ASSERT_EQ(::mkfifo(in("fifo").c_str(), S_IRUSR | S_IWUSR), 0);
    divert(in("fifo").c_str(), O_RDWR);
    expectFailure(read(1, 1), "Error Seeking on Device: Illegal seek");
    expectFailure(write(1, 1), "Error Seeking on Device: Illegal seek");
    EXPECT_TRUE(isUntouched());
}

TEST_F(mCmdTransferTest, APositionThatIsNotReachedIsReported) {
    divert("/dev/null", O_RDWR); // whose position is always 0
    for (const DeviceResult& result : {read(1, 1), write(1, 1)}) {
        EXPECT_EQ(result.code, 0x01010000);
        EXPECT_EQ(result.message.rfind("Error Seeking on Device: ", 0), 0u) << result.message;
    }
    expectSuccess(read(0, 1));
    EXPECT_EQ(m_bytes, 0u);
    expectSuccess(write(0, 1));
    EXPECT_EQ(m_bytes, kBlock);
}

TEST_F(mCmdTransferTest, WhatTheDeviceRefusesIsReported) {
    divert("/dev/full", O_RDWR);
    expectFailure(write(0, 1), "Error Writing on Device: No space left on device");
    divert(path().c_str(), O_WRONLY);
    expectFailure(read(1, 1), "Error Reading on Device: Bad file descriptor");
    divert(path().c_str(), O_RDONLY);
    expectFailure(write(1, 1), "Error Writing on Device: Bad file descriptor");
    EXPECT_TRUE(isUntouched());
    EXPECT_EQ(content(), m_before);
    expectSuccess(read(1, 1));
    EXPECT_EQ(m_memory.substr(0, kBlock), blocksOf('b')) << "it stays open";
}

TEST_F(mCmdTransferTest, ADeviceThatGivesLessIsBelieved) {
    m_file.resize(4 * kBlock + 1000);
    expectSuccess(read(3, 4));
    EXPECT_EQ(m_bytes, kBlock + 1000);
    EXPECT_EQ(m_memory, blocksOf('d') + blocksOf('e').substr(0, 1000) +
                            blocksOf('.', kBlocks).substr(kBlock + 1000));
    m_file.resize(0);
    expectSuccess(read(3, 4));
    EXPECT_EQ(m_bytes, 0u);
}

TEST_F(mCmdTransferTest, ADeviceThatTakesLessIsBelieved) {
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{5 * kBlock + 100, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const DeviceResult partial = write(4, 3);
    const unsigned bytes = m_bytes;
    const DeviceResult none = write(6, 1);
    ::setrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, SIG_DFL);

    expectSuccess(partial);
    EXPECT_EQ(bytes, kBlock + 100);
    expectFailure(none, "Error Writing on Device: File too large");
    std::string expected = m_before;
    expected.replace(4 * kBlock, kBlock + 100, kBlock + 100, '.');
    EXPECT_EQ(content(), expected);
}
