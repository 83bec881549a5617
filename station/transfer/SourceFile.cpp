#include "transfer/SourceFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "client/Failure.h"

namespace station {

namespace {

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw Failure(Failure::Kind::InvalidRequest, "cannot read " + path + ": " + reason);
}

} // namespace

SourceFile::SourceFile(const std::string& path)
    // A pipe without a writer must not block here: it is refused.
    : m_path(path), m_file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    const int error = errno;
    if (!m_file)
        refuse(path, std::system_category().message(error));
    struct stat status {};
    if (::fstat(m_file.get(), &status) != 0)
        refuse(path, std::system_category().message(errno));
    if (!S_ISREG(status.st_mode))
        refuse(path, "not a regular file");
    if (status.st_size == 0)
        refuse(path, "the file is empty, there is nothing to transfer");
    m_size = static_cast<std::uint64_t>(status.st_size);
}

std::string SourceFile::read(std::uint64_t position, std::size_t count) const {
    std::string bytes(count, '\0');
    std::size_t filled = 0;
    while (filled < count) {
        const ssize_t got = ::pread(m_file.get(), bytes.data() + filled, count - filled,
                                    static_cast<off_t>(position + filled));
        const int error = errno;
        if (got < 0 && error == EINTR)
            continue;
        if (got < 0)
            throw std::system_error(error, std::system_category(), "cannot read " + m_path);
        if (got == 0)
            throw std::runtime_error(m_path + " has become shorter during the transfer");
        filled += static_cast<std::size_t>(got);
    }
    return bytes;
}

} // namespace station
