#pragma once

#include <cstdint>
#include <string>

namespace headunit {

/// The files of one unit, under the names that the daemon knows them by. Devices
/// put their nodes into it; what stands behind the names (a folder, or the
/// machine itself) is the derived class's subject. Not synchronised: one thread
/// at a time. A path inside the unit is absolute and normal ("/dev/nvsku/rev").
class UnitTree {
public:
    virtual ~UnitTree() = default;

    /// Where the host finds `unitPath`. No effect on the disk.
    virtual std::string hostPath(const std::string& unitPath) const = 0;

    /// Makes the folders above `unitPath` and reserves the name for the unit, so that it is removed
    /// together with the unit. Returns the host's path, at which the caller may make a file, link or
    /// socket. Throws UnitError when the name is not free for this unit or a folder cannot be made.
    virtual std::string claim(const std::string& unitPath) = 0;

    /// Makes the file with exactly these bytes, mode 0644 less the umask. A file of less than `size`
    /// bytes is filled up with zeros that take no room on the disk. A file that the unit has already is
    /// left as it is: it is the state that somebody prepared. Throws UnitError.
    void createFile(const std::string& unitPath, const std::string& content, std::uint64_t size = 0);
};

/// All bytes of a file on the host. Throws UnitError.
std::string readHostFile(const std::string& path);

/// Replaces the first bytes of a file that exists on the host and leaves the rest, so that a reader
/// never finds it empty. Throws UnitError.
void overwriteHostFile(const std::string& path, const std::string& content);

} // namespace headunit
