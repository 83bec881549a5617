#include "requests/Medium.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>

#include "wire/Descriptor.h"

Medium::Medium(const Place& place) : m_place(place) {
    struct stat status {};
    if (::stat(place.path, &status) != 0)
        throw std::runtime_error(std::string(place.path) + " is not there");
    m_blockSize = static_cast<std::uint32_t>(status.st_blksize);
    m_blocks = static_cast<std::uint32_t>(status.st_size / status.st_blksize);
}

std::string Medium::content(std::uint32_t firstBlock, std::uint32_t count) const {
    const System::Descriptor image(::open(m_place.path, O_RDONLY | O_CLOEXEC));
    std::string bytes(std::size_t{count} * m_blockSize, '\0');
    const off_t position = off_t{firstBlock} * m_blockSize;
    if (!image ||
        ::pread(image.get(), bytes.data(), bytes.size(), position) != static_cast<ssize_t>(bytes.size()))
        throw std::runtime_error(std::string(m_place.path) + " cannot be read");
    return bytes;
}
