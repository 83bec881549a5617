#include "client/SerialLink.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "client/Failure.h"
#include "client/Readiness.h"

namespace station {

namespace {

constexpr std::size_t kReceiveSize = 4096;
constexpr speed_t kSpeed = B115200;

// Longer than the longest frame takes at this speed.
constexpr Seconds kTimeToGoOut{0.2};
constexpr int kBetweenLooksMs = 2;

std::string describe(int error) {
    return std::system_category().message(error);
}

[[noreturn]] void refuse(const SerialTarget& target, const std::string& reason) {
    throw Failure(Failure::Kind::CannotConnect, "cannot connect to " + target.text() + ": " + reason);
}

[[noreturn]] void failLost(const std::string& activity, int error) {
    throw Failure(Failure::Kind::ConnectionLost,
                  "the connection was lost while " + activity + ": " + describe(error));
}

System::Descriptor openTerminal(const SerialTarget& target) {
    for (;;) {
        System::Descriptor line(::open(target.path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
        const int error = errno;
        if (line)
            return line;
        if (error != EINTR)
            refuse(target, describe(error));
    }
}

void lock(int line, const SerialTarget& target) {
    for (;;) {
        if (::flock(line, LOCK_EX | LOCK_NB) == 0)
            return;
        const int error = errno;
        if (error == EWOULDBLOCK)
            refuse(target, "in use by another station");
        if (error != EINTR)
            refuse(target, describe(error));
    }
}

termios lineSettings(termios attributes) {
    ::cfmakeraw(&attributes);
    attributes.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
    attributes.c_cflag |= CREAD | CLOCAL;
    ::cfsetispeed(&attributes, kSpeed);
    ::cfsetospeed(&attributes, kSpeed);
    // A read of no bytes then means that the line has hung up, and nothing else.
    attributes.c_cc[VMIN] = 1;
    attributes.c_cc[VTIME] = 0;
    return attributes;
}

/// tcsetattr() calls it a success when it could do any of what was asked.
bool tookSettings(int line) {
    termios taken = {};
    if (::tcgetattr(line, &taken) != 0)
        return false;
    constexpr tcflag_t kCooked = ICANON | ECHO | ISIG | IEXTEN;
    return ::cfgetospeed(&taken) == kSpeed && (taken.c_lflag & kCooked) == 0 &&
           (taken.c_oflag & OPOST) == 0 && (taken.c_cflag & CSIZE) == CS8;
}

bool hasOutput(int line) {
    int waiting = 0;
    return ::ioctl(line, TIOCOUTQ, &waiting) == 0 && waiting > 0;
}

/// tcdrain() knows no deadline.
void letOutputGo(int line) {
    const Deadline deadline = Deadline::after(kTimeToGoOut);
    while (hasOutput(line) && !deadline.expired())
        ::poll(nullptr, 0, kBetweenLooksMs);
    if (hasOutput(line))
        ::tcflush(line, TCOFLUSH);
}

} // namespace

SerialLink SerialLink::open(const SerialTarget& target) {
    System::Descriptor line = openTerminal(target);
    if (::isatty(line.get()) == 0)
        refuse(target, "not a terminal");
    lock(line.get(), target);

    termios attributes = {};
    if (::tcgetattr(line.get(), &attributes) != 0)
        refuse(target, describe(errno));
    const termios settings = lineSettings(attributes);
    // From here on the attributes go back whatever happens. What has already arrived is kept.
    SerialLink link(std::move(line), attributes);
    if (::tcsetattr(link.m_line.get(), TCSANOW, &settings) != 0)
        refuse(target, describe(errno));
    if (!tookSettings(link.m_line.get()))
        refuse(target, "the terminal does not take 115200 baud, 8 data bits, no parity, 1 stop bit");
    return link;
}

SerialLink::SerialLink(System::Descriptor line, const termios& attributes)
    : m_line(std::move(line)), m_attributes(attributes) {}

SerialLink::~SerialLink() {
    if (!m_line)
        return;
    letOutputGo(m_line.get());
    ::tcsetattr(m_line.get(), TCSADRAIN, &m_attributes);
}

void SerialLink::send(std::string_view bytes, const Deadline& deadline) {
    while (!bytes.empty()) {
        const ssize_t sent = ::write(m_line.get(), bytes.data(), bytes.size());
        const int error = errno;
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
            continue;
        }
        if (!isWorthWaiting(error))
            failLost("sending to the unit", error);
        if (!waitUntilReady(m_line.get(), POLLOUT, deadline))
            throw Failure(Failure::Kind::TimedOut, "time-out while sending to the unit");
    }
}

std::optional<std::string> SerialLink::receiveBy(const Deadline& moment) {
    std::array<char, kReceiveSize> buffer;
    for (;;) {
        const ssize_t received = ::read(m_line.get(), buffer.data(), buffer.size());
        const int error = errno;
        if (received >= 0)
            return std::string(buffer.data(), static_cast<std::size_t>(received));
        // How a line that has hung up reads, beside the end of file.
        if (error == EIO)
            return std::string();
        if (!isWorthWaiting(error))
            failLost("waiting for the answer", error);
        if (!waitUntilReady(m_line.get(), POLLIN, moment))
            return std::nullopt;
    }
}

} // namespace station
