#include "unit/UnitTree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "unit/UnitError.h"
#include "wire/Descriptor.h"

namespace headunit {
namespace {

constexpr mode_t kFileMode = 0644;

void writeAll(const std::string& path, int flags, const std::string& content) {
    const System::Descriptor file(::open(path.c_str(), flags | O_WRONLY | O_CLOEXEC, kFileMode));
    if (!file)
        throw systemError("cannot open " + path, errno);
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t written = ::write(file.get(), content.data() + done, content.size() - done);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw systemError("cannot write " + path, errno);
        done += static_cast<std::size_t>(written);
    }
}

} // namespace

void UnitTree::createFile(const std::string& unitPath, const std::string& content, std::uint64_t size) {
    const std::string path = claim(unitPath);
    struct stat present {};
    if (::lstat(path.c_str(), &present) == 0)
        return;
    writeAll(path, O_CREAT | O_EXCL, content);
    if (size > content.size() && ::truncate(path.c_str(), static_cast<off_t>(size)) != 0)
        throw systemError("cannot enlarge " + path, errno);
}

std::string readHostFile(const std::string& path) {
    const System::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file)
        throw systemError("cannot open " + path, errno);
    std::string content;
    std::array<char, 4096> block;
    for (;;) {
        const ssize_t count = ::read(file.get(), block.data(), block.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw systemError("cannot read " + path, errno);
        if (count == 0)
            return content;
        content.append(block.data(), static_cast<std::size_t>(count));
    }
}

void overwriteHostFile(const std::string& path, const std::string& content) {
    writeAll(path, 0, content);
}

} // namespace headunit
