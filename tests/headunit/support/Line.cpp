#include "support/Line.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "support/Waiting.h"

namespace headunit_test {

Line::Line(const std::string& path)
    : ByteStream(System::Descriptor(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))) {
    EXPECT_GE(descriptor(), 0) << path << ": " << std::strerror(errno);
}

std::size_t Line::writeSome(const std::string& bytes) const {
    const ssize_t count = ::write(descriptor(), bytes.data(), bytes.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::string Line::readNow() const {
    std::array<char, 4096> block;
    const ssize_t got = ::read(descriptor(), block.data(), block.size());
    return got > 0 ? std::string(block.data(), static_cast<std::size_t>(got)) : "";
}

bool Line::seesHangUp() const {
    const bool isHungUp = eventually([this] {
        pollfd waited{descriptor(), 0, 0};
        return ::poll(&waited, 1, 0) == 1 && (waited.revents & POLLHUP) != 0;
    });
    char byte = 0;
    const ssize_t got = ::read(descriptor(), &byte, 1);
    return isHungUp && (got == 0 || (got < 0 && errno == EIO));
}

} // namespace headunit_test
