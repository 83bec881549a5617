#include "support/Line.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <tuple>

#include "support/DeviceCalls.h"
#include "support/Waiting.h"

namespace {

constexpr int kPatienceMs = 60000;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

bool waitFor(int descriptor, short events, int limitMs) {
    pollfd event{descriptor, events, 0};
    int ready = 0;
    do {
        ready = ::poll(&event, 1, limitMs);
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

/// Which file it is. Names do not tell: terminals of different instances have the same ones.
std::tuple<dev_t, ino_t, dev_t> identityOf(int descriptor) {
    struct stat status {};
    // The descriptor that the folder itself was listed with is gone by now.
    if (::fstat(descriptor, &status) != 0)
        return {};
    return {status.st_dev, status.st_ino, status.st_rdev};
}

} // namespace

Line::Line() {
    const DeviceCalls::Aside aside;
    m_far.reset(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    std::array<char, 64> path{};
    if (!m_far || ::grantpt(m_far.get()) != 0 || ::unlockpt(m_far.get()) != 0 ||
        ::ptsname_r(m_far.get(), path.data(), path.size()) != 0)
        fail("cannot make a pseudo-terminal");
    m_path = path.data();
    m_terminal.reset(::open(path.data(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    if (!m_terminal)
        fail(m_path);
}

void Line::send(std::string_view bytes) {
    const DeviceCalls::Aside aside;
    while (!bytes.empty()) {
        if (!waitFor(m_far.get(), POLLOUT, kPatienceMs))
            throw std::runtime_error("the line does not take what is sent");
        const ssize_t count = ::write(m_far.get(), bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR && errno != EAGAIN)
            fail("write");
    }
}

void Line::send(std::string_view bytes, int expected) {
    send(bytes);
    if (!eventually([&] { return waiting() >= expected; }))
        throw std::runtime_error("what was sent does not arrive");
}

int Line::waiting() const {
    int count = -1;
    if (::ioctl(m_terminal.get(), FIONREAD, &count) != 0)
        fail("FIONREAD");
    return count;
}

std::string Line::receive(std::size_t count) {
    const DeviceCalls::Aside aside;
    std::string bytes;
    while (bytes.size() < count && waitFor(m_far.get(), POLLIN, kPatienceMs)) {
        std::array<char, 4096> block;
        const ssize_t got =
            ::read(m_far.get(), block.data(), std::min(block.size(), count - bytes.size()));
        if (got > 0)
            bytes.append(block.data(), static_cast<std::size_t>(got));
        else if (got == 0 || (errno != EINTR && errno != EAGAIN))
            fail("read");
    }
    return bytes;
}

bool Line::isSilent() const {
    const DeviceCalls::Aside aside;
    return !waitFor(m_far.get(), POLLIN, 0);
}

termios Line::attributes() const {
    const DeviceCalls::Aside aside;
    termios attributes{};
    if (::tcgetattr(m_terminal.get(), &attributes) != 0)
        fail("tcgetattr");
    return attributes;
}

void Line::setAttributes(const termios& attributes) {
    const DeviceCalls::Aside aside;
    if (::tcsetattr(m_terminal.get(), TCSANOW, &attributes) != 0)
        fail("tcsetattr");
}

std::vector<int> Line::opened() const {
    const auto self = identityOf(m_terminal.get());
    std::vector<int> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int descriptor = std::stoi(entry.path().filename());
        if (descriptor != m_terminal.get() && identityOf(descriptor) == self)
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
