#include "line/Adapter.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "support/Waiting.h"

namespace {

constexpr char kFreshLink[] = "/dev/usbserialadapter1.fresh";
constexpr char kLineEnd[] = "\x03\n";

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

void makeRaw(int terminal) {
    termios attributes{};
    if (::tcgetattr(terminal, &attributes) != 0)
        fail("tcgetattr");
    ::cfmakeraw(&attributes);
    if (::tcsetattr(terminal, TCSANOW, &attributes) != 0)
        fail("tcsetattr");
}

bool endsInLineEnd(const std::string& text) {
    return text.size() >= 2 && text.compare(text.size() - 2, 2, kLineEnd) == 0;
}

} // namespace

Adapter::Adapter() {
    plug();
}

Adapter::~Adapter() {
    pull();
}

void Adapter::pull() {
    ::unlink(kNode);
    m_unit.reset();
    m_station.reset();
}

void Adapter::plug() {
    System::Descriptor station(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    std::array<char, 64> path{};
    if (!station || ::grantpt(station.get()) != 0 || ::unlockpt(station.get()) != 0 ||
        ::ptsname_r(station.get(), path.data(), path.size()) != 0)
        fail("cannot make a pseudo-terminal");
    System::Descriptor unit(::open(path.data(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    if (!unit)
        fail(path.data());
    makeRaw(unit.get());
    m_station = std::move(station);
    m_unit = std::move(unit);
    m_terminal = path.data();
    // The node appears whole, in place of another one if need be.
    ::unlink(kFreshLink);
    if (::symlink(path.data(), kFreshLink) != 0 || std::rename(kFreshLink, kNode) != 0)
        fail(kNode);
}

void Adapter::send(std::string_view bytes) {
    while (!bytes.empty()) {
        if (!waitFor(POLLOUT, kPatience))
            throw std::runtime_error("send: the unit does not read");
        const ssize_t count = ::write(m_station.get(), bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR && errno != EAGAIN)
            fail("write");
    }
}

std::string Adapter::receive(std::size_t count) {
    std::string bytes;
    while (bytes.size() < count && waitFor(POLLIN, kPatience)) {
        std::array<char, 4096> block;
        const ssize_t got =
            ::read(m_station.get(), block.data(), std::min(block.size(), count - bytes.size()));
        if (got > 0)
            bytes.append(block.data(), static_cast<std::size_t>(got));
        else if (got == 0 || (errno != EINTR && errno != EAGAIN))
            fail("read");
    }
    return bytes;
}

std::string Adapter::receiveLine() {
    std::string line;
    while (!endsInLineEnd(line)) {
        const std::string byte = receive(1);
        if (byte.empty())
            break;
        line += byte;
    }
    return line;
}

std::string Adapter::receiveFrame() {
    std::string frame = receive(1);
    if (!frame.empty() && static_cast<unsigned char>(frame.front()) > 1)
        frame += receive(static_cast<unsigned char>(frame.front()) - 1U);
    return frame;
}

bool Adapter::isSilentFor(std::chrono::milliseconds time) {
    return !waitFor(POLLIN, time);
}

void Adapter::waitUntilTaken() {
    // Unlike asking for the number of bytes, polling has the terminal deliver what is on its way first.
    const auto isTaken = [this] {
        pollfd event{m_unit.get(), POLLIN, 0};
        return ::poll(&event, 1, 0) == 0;
    };
    if (!eventually(isTaken))
        throw std::runtime_error("the daemon does not read its line");
}

bool Adapter::waitFor(short events, std::chrono::milliseconds time) const {
    pollfd event{m_station.get(), events, 0};
    int ready = 0;
    do {
        ready = ::poll(&event, 1, static_cast<int>(time.count()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}
