#pragma once

#include <cstdint>
#include <string>

#include "wire/Descriptor.h"

/// A regular file that stands in for a block device of 4096-byte blocks. It has no content until it is
/// filled, so it takes up next to nothing, however large. It is not kept open. Fails the case when it
/// cannot do what it is told.
class BlockFile {
public:
    static constexpr std::uint32_t kBlock = 4096; ///< in bytes

    /// Makes the file, or makes it anew. It stays when this ends.
    BlockFile(std::string path, std::uint64_t blocks);

    const std::string& path() const { return m_path; }

    /// All bytes of this one block.
    void fill(std::uint64_t block, char byte);
    std::string block(std::uint64_t number) const { return blocks(number, 1); }
    std::string blocks(std::uint64_t first, std::uint64_t count) const;

    std::uint64_t size() const; ///< in bytes
    void resize(std::uint64_t bytes);

private:
    System::Descriptor opened() const;

    std::string m_path;
};

/// This many blocks of this byte.
std::string blocksOf(char byte, std::size_t count = 1);
