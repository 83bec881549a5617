#include "FakeLine.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "client/Deadline.h"

namespace station {

namespace {

constexpr Seconds kPatience{60};
constexpr int kBetweenLooksMs = 2;

[[noreturn]] void fail(const char* call) {
    throw std::system_error(errno, std::system_category(), call);
}

bool becomesReady(int descriptor, short events) {
    pollfd entry = {descriptor, events, 0};
    return ::poll(&entry, 1, Deadline::after(kPatience).pollMilliseconds()) > 0;
}

/// One read; empty, with a test failure, when nothing comes.
std::string readSome(int descriptor, std::size_t most) {
    std::array<char, 4096> buffer;
    if (!becomesReady(descriptor, POLLIN)) {
        ADD_FAILURE() << "nothing arrived at the unit";
        return {};
    }
    const ssize_t received = ::read(descriptor, buffer.data(), std::min(most, buffer.size()));
    EXPECT_GT(received, 0) << "errno " << errno;
    return received > 0 ? std::string(buffer.data(), static_cast<std::size_t>(received)) : std::string();
}

} // namespace

FakeLine::FakeLine() {
    m_master.reset(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    std::array<char, 64> path = {};
    const bool isMade = m_master && ::grantpt(m_master.get()) == 0 && ::unlockpt(m_master.get()) == 0 &&
                        ::ptsname_r(m_master.get(), path.data(), path.size()) == 0;
    if (!isMade)
        fail("posix_openpt");
    m_target.path = path.data();
    m_terminal.reset(::open(path.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios attributes = {};
    if (!m_terminal || ::tcgetattr(m_terminal.get(), &attributes) != 0)
        fail("open");
    ::cfmakeraw(&attributes);
    if (::tcsetattr(m_terminal.get(), TCSANOW, &attributes) != 0)
        fail("tcsetattr");
}

void FakeLine::waitForStation() const {
    const Deadline deadline = Deadline::after(kPatience);
    termios attributes = {};
    while (::tcgetattr(m_terminal.get(), &attributes) == 0 && ::cfgetospeed(&attributes) != B115200) {
        if (deadline.expired()) {
            ADD_FAILURE() << "no station has come";
            return;
        }
        ::poll(nullptr, 0, kBetweenLooksMs);
    }
}

void FakeLine::send(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t sent = ::write(m_master.get(), bytes.data(), bytes.size());
        ASSERT_GT(sent, 0) << "errno " << errno;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

void FakeLine::sendByteByByte(std::string_view bytes) const {
    for (std::size_t i = 0; i < bytes.size(); ++i)
        send(bytes.substr(i, 1));
}

std::string FakeLine::receive(std::size_t count) const {
    std::string bytes;
    while (bytes.size() < count) {
        const std::string more = readSome(m_master.get(), count - bytes.size());
        if (more.empty())
            return bytes;
        bytes += more;
    }
    return bytes;
}

std::string FakeLine::receiveRest() const {
    // Bytes on their way cannot be waited for, but they stay in order: a mark goes behind them.
    const std::string mark = "\x01mark\x01";
    EXPECT_EQ(::write(m_terminal.get(), mark.data(), mark.size()), static_cast<ssize_t>(mark.size()));
    std::string bytes;
    std::size_t end = std::string::npos;
    while (end == std::string::npos) {
        const std::string more = receive(1);
        if (more.empty())
            return bytes;
        bytes += more;
        end = bytes.find(mark);
    }
    return bytes.substr(0, end);
}

void FakeLine::hangUp() {
    m_terminal.reset();
    m_master.reset();
}

LineScript::LineScript(std::function<void()> script)
    : m_thread([script = std::move(script)] {
          // Signals of a test are for the thread that runs the test.
          sigset_t all;
          ::sigfillset(&all);
          ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
          script();
      }) {}

std::string unitFrame(std::string_view rest) {
    return static_cast<char>(rest.size() + 1) + std::string(rest);
}

std::string debugFrame(std::string_view text) {
    return unitFrame("d" + std::string(text));
}

std::string statusFrame(bool isFirst) {
    const std::string header = {'s', 0x2C, static_cast<char>(isFirst ? 0 : 1), 0, 0, 0, 0};
    const std::string known = "\x21\x11\x26\x09\x03\xA0\x24";
    const std::string board = {0, 0x1A, 4};
    return unitFrame(header + known + board + std::string(6, '\0'));
}

} // namespace station
