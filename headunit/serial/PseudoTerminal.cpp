#include "serial/PseudoTerminal.h"

#include <fcntl.h>
#include <stdlib.h> // NOLINT(modernize-deprecated-headers): the terminal functions are POSIX's
#include <sys/ioctl.h>
#include <termios.h>

#include <array>
#include <cerrno>

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr std::size_t kLongestPath = 64;
constexpr char kNone[] = "cannot open a pseudo-terminal";

void makeRaw(int terminal) {
    termios attributes{};
    if (::tcgetattr(terminal, &attributes) != 0)
        throw systemError(kNone, errno);
    ::cfmakeraw(&attributes);
    if (::tcsetattr(terminal, TCSANOW, &attributes) != 0)
        throw systemError(kNone, errno);
}

} // namespace

PseudoTerminal::PseudoTerminal() : m_near(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
    if (!m_near || ::grantpt(m_near.get()) != 0 || ::unlockpt(m_near.get()) != 0)
        throw systemError(kNone, errno);
    std::array<char, kLongestPath> path;
    if (const int error = ::ptsname_r(m_near.get(), path.data(), path.size()); error != 0)
        throw systemError(kNone, error);
    m_path = path.data();
    revive();
}

std::size_t PseudoTerminal::unread() const {
    int count = 0;
    if (::ioctl(m_far.get(), FIONREAD, &count) != 0 || count < 0)
        return 0;
    return static_cast<std::size_t>(count);
}

void PseudoTerminal::discardWritten() {
    // In this order: what is still on its way first, then what has arrived.
    ::tcflush(m_far.get(), TCOFLUSH);
    ::tcflush(m_near.get(), TCIFLUSH);
}

void PseudoTerminal::revive() {
    System::Descriptor far(::ioctl(m_near.get(), TIOCGPTPEER, O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!far)
        throw systemError(kNone, errno);
    makeRaw(far.get());
    m_far = std::move(far);
}

} // namespace headunit
