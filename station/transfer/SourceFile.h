#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "wire/Descriptor.h"

namespace station {

/// The file that a transfer takes its bytes from.
class SourceFile {
public:
    /// Throws `Failure` (`InvalidRequest`): it cannot be read, is no regular file, or is empty, which is
    /// more likely a mistake than what somebody wants to bring into a unit.
    explicit SourceFile(const std::string& path);

    std::uint64_t size() const { return m_size; } ///< bytes

    /// All of these bytes. Throws std::runtime_error when the file no longer has them or cannot be read.
    std::string read(std::uint64_t position, std::size_t count) const;

private:
    std::string m_path;
    System::Descriptor m_file;
    std::uint64_t m_size = 0;
};

} // namespace station
