#include "transfer/PartialFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "client/Failure.h"

namespace station {

namespace {

constexpr mode_t kReadableAndWritable = 0666;

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw Failure(Failure::Kind::InvalidRequest, "cannot write " + path + ": " + reason);
}

[[noreturn]] void fail(const std::string& activity, const std::string& path, int error) {
    throw std::system_error(error, std::system_category(), "cannot " + activity + " " + path);
}

/// Where the new file is to be: what a link leads to is replaced, not the link.
std::string destination(const std::string& path) {
    std::error_code missing;
    const auto target = std::filesystem::canonical(path, missing);
    return missing ? path : target.string();
}

std::string folderOf(const std::string& path) {
    const auto folder = std::filesystem::path(path).parent_path();
    return folder.empty() ? "." : folder.string();
}

} // namespace

void checkDestination(const std::string& path) {
    const std::string target = destination(path);
    struct stat status {};
    if (::stat(target.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        refuse(path, "not a regular file");
    if (path.empty() || path.back() == '/')
        refuse(path, "not the name of a file");
    if (::access(folderOf(target).c_str(), W_OK | X_OK) != 0)
        refuse(path, std::system_category().message(errno));
}

PartialFile::PartialFile(const std::string& path) : m_path(destination(path)) {
    const std::string part = partName(m_path);
    m_file.reset(::open(part.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                        kReadableAndWritable));
    if (!m_file)
        fail("open", part, errno);
    // It still belongs to whoever is writing it.
    if (::flock(m_file.get(), LOCK_EX | LOCK_NB) != 0) {
        m_isComplete = true;
        refuse(part, "another program is writing it");
    }
    if (::ftruncate(m_file.get(), 0) != 0)
        fail("empty", part, errno);
}

PartialFile::~PartialFile() {
    if (!m_isComplete && m_size == 0)
        ::unlink(partName(m_path).c_str());
}

void PartialFile::append(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(m_file.get(), bytes.data(), bytes.size());
        const int error = errno;
        if (written < 0 && error == EINTR)
            continue;
        if (written < 0)
            fail("write", partName(m_path), error);
        bytes.remove_prefix(static_cast<std::size_t>(written));
        m_size += static_cast<std::uint64_t>(written);
    }
}

void PartialFile::complete() {
    if (::fsync(m_file.get()) != 0)
        fail("write", partName(m_path), errno);
    if (std::rename(partName(m_path).c_str(), m_path.c_str()) != 0)
        fail("name", m_path, errno);
    m_isComplete = true;
}

} // namespace station
