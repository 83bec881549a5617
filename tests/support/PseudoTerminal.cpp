#include "support/PseudoTerminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

/// Does not block, so that a wait for room in the line can have an end.
System::Descriptor openFarEnd() {
    System::Descriptor end(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    if (!end || ::grantpt(end.get()) != 0 || ::unlockpt(end.get()) != 0)
        fail("cannot make a pseudo-terminal");
    return end;
}

std::string pathOfTerminal(int farEnd) {
    std::array<char, 64> path{};
    if (::ptsname_r(farEnd, path.data(), path.size()) != 0)
        fail("ptsname_r");
    return path.data();
}

} // namespace

PseudoTerminal::PseudoTerminal() : ByteStream(openFarEnd()), m_path(pathOfTerminal(descriptor())) {
    m_terminal.reset(::open(m_path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!m_terminal)
        fail(m_path);
}

termios PseudoTerminal::attributes() const {
    termios attributes{};
    if (::tcgetattr(m_terminal.get(), &attributes) != 0)
        fail("tcgetattr");
    return attributes;
}

void PseudoTerminal::setAttributes(const termios& attributes) const {
    if (::tcsetattr(m_terminal.get(), TCSANOW, &attributes) != 0)
        fail("tcsetattr");
}

void PseudoTerminal::makeRaw() const {
    termios raw = attributes();
    ::cfmakeraw(&raw);
    setAttributes(raw);
}

void PseudoTerminal::remove() {
    m_terminal.reset();
    hangUp();
}
