// Files of more than 4 GiB, which have to be right where a long has 32 bits as well.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include "TransferTest.h"
#include "transfer/SourceFile.h"
#include "wire/Descriptor.h"

namespace station {
namespace {

constexpr std::int64_t kFourGiB = std::int64_t{1} << 32;

TEST(LargeFile, IsReadBeyondFourGibibytes) {
    // In memory: not every file system has files of this size.
    const System::Descriptor file(::memfd_create("large", MFD_CLOEXEC));
    ASSERT_TRUE(file);
    ASSERT_EQ(::pwrite(file.get(), "low", 3, 0), 3);
    ASSERT_EQ(::pwrite(file.get(), "high", 4, kFourGiB + 1), 4);
    const SourceFile source("/proc/self/fd/" + std::to_string(file.get()));
    EXPECT_EQ(source.size(), static_cast<std::uint64_t>(kFourGiB) + 5);
    EXPECT_EQ(source.read(static_cast<std::uint64_t>(kFourGiB) + 1, 4), "high");
    EXPECT_EQ(source.read(static_cast<std::uint64_t>(kFourGiB) - 1, 4), std::string("\0\0hi", 4));
    EXPECT_EQ(source.read(0, 3), "low");
}

} // namespace
} // namespace station
