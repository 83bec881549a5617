#include "platform/Memory.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <limits>
#include <memory>
#include <vector>

#include "support/DescriptorLimit.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kHeapIsTheSystems = false;
#else
constexpr bool kHeapIsTheSystems = true;
#endif

std::size_t residentBytes() {
    unsigned long total = 0;
    unsigned long resident = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("/proc/self/statm", "r"),
                                                               std::fclose);
    if (!file || std::fscanf(file.get(), "%lu %lu", &total, &resident) != 2)
        return 0;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

} // namespace

TEST(MemoryTest, SomeMemoryIsAvailableButNotMoreThanThereIs) {
    const auto all = static_cast<std::uint64_t>(::sysconf(_SC_PHYS_PAGES)) *
                     static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    const std::uint64_t available = System::availableMemory();
    EXPECT_GT(available, 1024u * 1024u);
    EXPECT_LE(available, all);
}

TEST(MemoryTest, ASystemThatCannotTellHasNoLimit) {
    const NoMoreDescriptors none;
    EXPECT_EQ(System::availableMemory(), std::numeric_limits<std::uint64_t>::max());
}

TEST(MemoryTest, GivesBackWhatWasFreed) {
    if (!kHeapIsTheSystems)
        GTEST_SKIP() << "the heap is not the system's own";
    constexpr std::size_t kBlocks = 64 * 1024;
    constexpr std::size_t kBlockBytes = 1024;
    std::vector<std::unique_ptr<char[]>> blocks;
    for (std::size_t block = 0; block < kBlocks; ++block)
        blocks.push_back(std::make_unique<char[]>(kBlockBytes));
    // The last block stays in use, so that the heap cannot simply end earlier.
    const std::unique_ptr<char[]> last = std::move(blocks.back());
    blocks.clear();
    const std::size_t before = residentBytes();
    System::returnFreedMemory();
    EXPECT_LT(residentBytes(), before - kBlocks * kBlockBytes / 2);
}
