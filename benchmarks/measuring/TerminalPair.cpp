#include "measuring/TerminalPair.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "measuring/Failure.h"

namespace Measuring {

namespace {

constexpr int kPatienceMs = 60'000;
constexpr int kSilenceMs = 200;
constexpr std::size_t kReadSize = 4096;

bool isOnlyForNow(int error) {
    return error == EINTR || error == EAGAIN;
}

/// What of `events` has come about within the time.
short waitFor(int terminal, short events, int limitMs) {
    pollfd event{terminal, events, 0};
    int ready = 0;
    do {
        ready = ::poll(&event, 1, limitMs);
    } while (ready < 0 && errno == EINTR);
    if (ready < 0)
        throw failure("cannot wait for a terminal");
    return ready == 0 ? short{0} : event.revents;
}

void awaitReadiness(int terminal, short events) {
    if (waitFor(terminal, events, kPatienceMs) == 0)
        throw std::runtime_error("the serial line stands still");
}

void makeRaw(int terminal) {
    termios attributes{};
    if (::tcgetattr(terminal, &attributes) != 0)
        throw failure("cannot read a terminal's settings");
    ::cfmakeraw(&attributes);
    if (::tcsetattr(terminal, TCSANOW, &attributes) != 0)
        throw failure("cannot change a terminal's settings");
}

} // namespace

TerminalPair::TerminalPair() : m_near(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    std::array<char, 64> path{};
    if (!m_near || ::grantpt(m_near.get()) != 0 || ::unlockpt(m_near.get()) != 0 ||
        ::ptsname_r(m_near.get(), path.data(), path.size()) != 0)
        throw failure("cannot make a pseudo-terminal");
    m_path = path.data();
    m_far.reset(::open(m_path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!m_far)
        throw failure("cannot open " + m_path);
    makeRaw(m_far.get());
}

void TerminalPair::takePlaceOf(const std::string& node) const {
    const std::string fresh = node + ".fresh";
    ::unlink(fresh.c_str());
    if (::symlink(m_path.c_str(), fresh.c_str()) != 0 || std::rename(fresh.c_str(), node.c_str()) != 0)
        throw failure("cannot make " + node + ", run this in a unit of its own, with benchmarks/run");
}

void TerminalPair::send(std::string_view bytes) {
    sendSome(bytes);
    while (!bytes.empty()) {
        awaitReadiness(m_near.get(), POLLOUT);
        sendSome(bytes);
    }
}

std::string_view TerminalPair::receive(std::size_t count) {
    return exchange({}, count);
}

std::string_view TerminalPair::exchange(std::string_view bytes, std::size_t count) {
    m_received.clear();
    while (!bytes.empty() || m_received.size() < count) {
        awaitReadiness(m_near.get(), static_cast<short>((bytes.empty() ? 0 : POLLOUT) |
                                                        (m_received.size() < count ? POLLIN : 0)));
        sendSome(bytes);
        receiveSome(count - m_received.size());
    }
    return m_received;
}

bool TerminalPair::isSilent() const {
    return waitFor(m_near.get(), POLLIN, kSilenceMs) == 0;
}

void TerminalPair::sendSome(std::string_view& bytes) {
    if (bytes.empty())
        return;
    const ssize_t written = ::write(m_near.get(), bytes.data(), bytes.size());
    if (written < 0 && !isOnlyForNow(errno))
        throw failure("cannot send");
    if (written > 0)
        bytes.remove_prefix(static_cast<std::size_t>(written));
}

void TerminalPair::receiveSome(std::size_t count) {
    if (count == 0)
        return;
    std::array<char, kReadSize> block;
    const ssize_t received = ::read(m_near.get(), block.data(), std::min(count, block.size()));
    if (received < 0 && !isOnlyForNow(errno))
        throw failure("no answer");
    if (received > 0)
        m_received.append(block.data(), static_cast<std::size_t>(received));
}

} // namespace Measuring
