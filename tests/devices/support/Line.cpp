#include "support/Line.h"

#include <sys/ioctl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <tuple>

#include "support/DeviceCalls.h"
#include "support/Waiting.h"

namespace {

/// Which file it is. Names do not tell: terminals of different instances have the same ones.
std::tuple<dev_t, ino_t, dev_t> identityOf(int descriptor) {
    struct stat status {};
    // The descriptor that the folder itself was listed with is gone by now.
    if (::fstat(descriptor, &status) != 0)
        return {};
    return {status.st_dev, status.st_ino, status.st_rdev};
}

} // namespace

void Line::send(std::string_view bytes) const {
    const DeviceCalls::Aside aside;
    m_line.send(bytes);
}

void Line::send(std::string_view bytes, int expected) const {
    send(bytes);
    if (!eventually([&] { return waiting() >= expected; }))
        throw std::runtime_error("what was sent does not arrive");
}

int Line::waiting() const {
    int count = -1;
    if (::ioctl(m_line.terminal(), FIONREAD, &count) != 0)
        throw std::system_error(errno, std::generic_category(), "FIONREAD");
    return count;
}

std::string Line::receive(std::size_t count) const {
    const DeviceCalls::Aside aside;
    return m_line.receive(count);
}

bool Line::isSilent() const {
    const DeviceCalls::Aside aside;
    return m_line.isSilentFor({});
}

termios Line::attributes() const {
    const DeviceCalls::Aside aside;
    return m_line.attributes();
}

void Line::setAttributes(const termios& attributes) const {
    const DeviceCalls::Aside aside;
    m_line.setAttributes(attributes);
}

std::vector<int> Line::opened() const {
    const auto self = identityOf(m_line.terminal());
    std::vector<int> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int descriptor = std::stoi(entry.path().filename());
        if (descriptor != m_line.terminal() && identityOf(descriptor) == self)
            found.push_back(descriptor);
    }
    std::sort(found.begin(), found.end());
    return found;
}

bool sameAttributes(const termios& one, const termios& other) {
    return one.c_iflag == other.c_iflag && one.c_oflag == other.c_oflag &&
           one.c_cflag == other.c_cflag && one.c_lflag == other.c_lflag &&
           std::equal(std::begin(one.c_cc), std::end(one.c_cc), std::begin(other.c_cc)) &&
           ::cfgetispeed(&one) == ::cfgetispeed(&other) && ::cfgetospeed(&one) == ::cfgetospeed(&other);
}
