#include "support/BlockFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace {

off_t positionOf(std::uint64_t block) {
    return static_cast<off_t>(block * BlockFile::kBlock);
}

} // namespace

BlockFile::BlockFile(std::string path, std::uint64_t blocks) : m_path(std::move(path)) {
    const System::Descriptor file(
        ::open(m_path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR));
    EXPECT_TRUE(file) << m_path;
    resize(blocks * kBlock);
    struct stat status {};
    EXPECT_EQ(::fstat(file.get(), &status), 0);
    EXPECT_EQ(status.st_blksize, kBlock) << "files have blocks of another size here";
}

System::Descriptor BlockFile::opened() const {
    System::Descriptor file(::open(m_path.c_str(), O_RDWR | O_CLOEXEC));
    EXPECT_TRUE(file) << m_path;
    return file;
}

void BlockFile::fill(std::uint64_t block, char byte) {
    const std::string content = blocksOf(byte);
    EXPECT_EQ(::pwrite(opened().get(), content.data(), content.size(), positionOf(block)), kBlock);
}

std::string BlockFile::blocks(std::uint64_t first, std::uint64_t count) const {
    std::string content(static_cast<std::size_t>(count) * kBlock, '\0');
    const ssize_t length = ::pread(opened().get(), content.data(), content.size(), positionOf(first));
    EXPECT_GE(length, 0);
    content.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    return content;
}

std::uint64_t BlockFile::size() const {
    struct stat status {};
    EXPECT_EQ(::fstat(opened().get(), &status), 0);
    return static_cast<std::uint64_t>(status.st_size);
}

void BlockFile::resize(std::uint64_t bytes) {
    EXPECT_EQ(::ftruncate(opened().get(), static_cast<off_t>(bytes)), 0);
}

std::string blocksOf(char byte, std::size_t count) {
    return std::string(count * BlockFile::kBlock, byte);
}
