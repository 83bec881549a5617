// No room left where a command's output is captured.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "Mounts.h"
#include "Ordeal.h"
#include "rows/Rows.h"
#include "support/BinaryFrames.h"
#include "support/UnitFiles.h"
#include "wire/Descriptor.h"

namespace {

constexpr long kRoom = 1 << 20;
constexpr long kFiles = 64;
constexpr char kFiller[] = "/tmp/filler";
// Not among what is full.
constexpr char kRan[] = "/dev/shm/ran";
constexpr std::size_t kOutput = 200'000;
const std::string kWriteMuch = "head -c 200000 /dev/zero | tr '\\000' x";

void forget(const char* path) {
    if (exists(path))
        removeFile(path);
}

/// Leaves so many bytes free, rounded to the file system's blocks.
void fillAllBut(std::size_t bytes) {
    const System::Descriptor file(::open(kFiller, O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
    const std::string block(4096, 'f');
    off_t size = 0;
    for (ssize_t count = 1; count > 0; size += std::max<ssize_t>(count, 0))
        count = ::write(file.get(), block.data(), block.size());
    ASSERT_EQ(::ftruncate(file.get(), std::max<off_t>(0, size - static_cast<off_t>(bytes))), 0);
}

/// A success brings what the file took and not a byte that it did not.
void expectWhatFits(Ordeal& ordeal, std::size_t room) {
    forget(kCaptureFile); // its room is the next one's
    fillAllBut(room);
    // Its exit code, which tells of the full disk, is not looked at; what it wrote is.
    const std::size_t most = std::min(room, kOutput);
    const Spoken asked = shellCommand(ordeal.link, 60, kWriteMuch, std::string(most, 'x'));
    ordeal.expect(asked);
    EXPECT_EQ(contentOf(kCaptureFile).size(), most);
    removeFile(kFiller);
}

/// Without room for the file itself nothing is executed.
void expectNotStarted(Ordeal& ordeal) {
    forget(kCaptureFile);
    forget(kRan);
    int files = 0;
    while (System::Descriptor(
        ::open(("/tmp/file" + std::to_string(files)).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR)))
        ++files;
    const std::string text = "echo ran >/dev/shm/ran";
    Spoken asked = shellCommand(ordeal.link, 60, text, "");
    const std::string message = "Error, the /tmp/resp.txt could not be created";
    asked.received =
        ordeal.link == Link::Frames ? refusal(execRequest(60, text), message) : failure("exec", message);
    ordeal.expect(asked);
    EXPECT_FALSE(exists(kRan));
    while (files > 0)
        removeFile("/tmp/file" + std::to_string(--files));
}

} // namespace

void diskFull(Ordeal& ordeal) {
    const SmallFileSystem full("/tmp", kRoom, kFiles);
    if (!full.isThere())
        GTEST_SKIP() << "this machine lets nobody mount a small file system";
    for (unsigned round = 0; round < ordeal.times(5, 500) && !testing::Test::HasFailure(); ++round) {
        for (const std::size_t room : {0U, 4096U, 65536U})
            expectWhatFits(ordeal, room);
        expectNotStarted(ordeal);
        ordeal.expect(shellCommand(ordeal.link, 60, kWriteMuch, std::string(kOutput, 'x')));
    }
}
