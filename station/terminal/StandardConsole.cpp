#include "terminal/StandardConsole.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <system_error>
#include <utility>

#include "client/Readiness.h"

namespace station {

namespace {

// How long a signal may go unnoticed.
constexpr Seconds kBetweenLooks{0.1};

[[noreturn]] void fail(int error, const char* what) {
    throw std::system_error(error, std::system_category(), what);
}

} // namespace

StandardConsole::StandardConsole(int input, int output, const Interruption& interruption)
    : m_input(input),
      m_output(output),
      m_interruption(interruption),
      m_isTerminal(::isatty(input) != 0) {}

void StandardConsole::begin() {
    if (!m_isTerminal || m_isRaw)
        return;
    if (::tcgetattr(m_input, &m_attributes) != 0)
        fail(errno, "cannot look at the terminal");
    termios raw = m_attributes;
    ::cfmakeraw(&raw);
    // What was typed ahead is kept.
    if (::tcsetattr(m_input, TCSANOW, &raw) != 0)
        fail(errno, "cannot set the terminal up");
    m_isRaw = true;
    tell("station: the line is open; Ctrl-] ends");
}

void StandardConsole::end() {
    if (m_isRaw)
        ::tcsetattr(m_input, TCSANOW, &m_attributes);
    m_isRaw = false;
}

Console::Input StandardConsole::read(Seconds wait, std::size_t most) {
    // poll() waits, but does not look at a descriptor below 0.
    pollfd entry = {m_hasEnded ? -1 : m_input, POLLIN, 0};
    const int ready = ::poll(&entry, 1, Deadline::after(wait).pollMilliseconds());
    if (ready < 0 && errno != EINTR)
        fail(errno, "cannot wait for standard input");
    if (ready <= 0)
        return {{}, m_hasEnded};
    std::string bytes(most, '\0');
    const ssize_t count = ::read(m_input, bytes.data(), bytes.size());
    const int error = errno;
    if (count < 0 && isWorthWaiting(error))
        return {};
    // How a terminal that has gone reads, beside the end of file.
    if (count < 0 && error != EIO)
        fail(error, "cannot read standard input");
    m_hasEnded = count <= 0;
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return {std::move(bytes), m_hasEnded};
}

void StandardConsole::write(std::string_view bytes) {
    while (!bytes.empty()) {
        while (!waitUntilReady(m_output, POLLOUT, Deadline::after(kBetweenLooks)))
            stopIfInterrupted(m_interruption);
        const ssize_t written = ::write(m_output, bytes.data(), bytes.size());
        const int error = errno;
        if (written >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (!isWorthWaiting(error))
            fail(error, "cannot write to standard output");
    }
}

void StandardConsole::tell(const std::string& line) const {
    std::cerr << line << (m_isRaw ? "\r\n" : "\n") << std::flush;
}

} // namespace station
