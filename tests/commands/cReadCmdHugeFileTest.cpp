// A file with more bytes than a size in memory has bits for on some machines.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <new>
#include <string>

#include "commands/cReadCmd.h"
#include "support/UnitFixture.h"
#include "wire/Descriptor.h"

namespace {

constexpr char kFile[] = "/tmp/huge";
// What is left of this in 32 bits is 3.
constexpr std::int64_t kHuge = (std::int64_t{1} << 44) + 3;

/// A file in memory of this size, without content but its beginning.
class cReadCmdHugeFileTest : public UnitFixture {
protected:
    cReadCmdHugeFileTest() : m_file(::memfd_create("huge", MFD_CLOEXEC)) {
        EXPECT_EQ(::pwrite(m_file.get(), "abc", 3, 0), 3);
        EXPECT_EQ(::ftruncate(m_file.get(), kHuge), 0);
        std::filesystem::remove(kFile);
        std::filesystem::create_symlink("/proc/self/fd/" + std::to_string(m_file.get()), kFile);
    }
    ~cReadCmdHugeFileTest() override { std::filesystem::remove(kFile); }

private:
    System::Descriptor m_file;
};

} // namespace

TEST_F(cReadCmdHugeFileTest, IsRefusedWholeAndNotCutShort) {
    const Response response(cReadCmd::getInstance()->ReadFromFileBase64(kFile));
    expectError(response, kGenericError, "cannot read /tmp/huge: Cannot allocate memory", 'a');
    EXPECT_THROW(readFileToString(kFile), std::bad_alloc);
}

TEST_F(cReadCmdHugeFileTest, ItsBeginningFillsAFrame) {
    Bytes request = {0x04, 'c', 1, 2};
    const Response response(cReadCmd::getInstance()->ReadFromFileBinary(&request, kFile));
    const Bytes frame = frameOf(*response);
    ASSERT_EQ(frame.size(), 254u) << "246 bytes of a file, however large";
    EXPECT_EQ(Bytes(frame.begin() + 8, frame.begin() + 12), (Bytes{'a', 'b', 'c', '\0'}));
}
