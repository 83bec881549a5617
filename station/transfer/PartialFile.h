#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "wire/Descriptor.h"

namespace station {

/// Throws `Failure` (`InvalidRequest`) when no file can be made at `path`, as far as that can be seen
/// without making it: it is something else than a regular file, or its folder is not writable.
void checkDestination(const std::string& path);

/// A file that comes into being under the name `FILE.part` beside FILE and gets
/// FILE's name when it is complete. Until then FILE is as it was. Left incomplete,
/// the part stays, to be looked at and to be written over by the next attempt,
/// unless nothing is in it. What the system refuses throws std::system_error.
class PartialFile {
public:
    /// Throws `Failure` (`InvalidRequest`) when another program is at work on the same part.
    explicit PartialFile(const std::string& path);
    ~PartialFile();
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    void append(std::string_view bytes);

    /// Blocks until the bytes are on the disk, then gives the file its name.
    void complete();

    static std::string partName(const std::string& path) { return path + ".part"; }

private:
    std::string m_path; // with links followed
    System::Descriptor m_file;
    std::uint64_t m_size = 0;
    bool m_isComplete = false;
};

} // namespace station
