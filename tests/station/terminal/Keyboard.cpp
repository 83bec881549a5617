#include "Keyboard.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "client/Deadline.h"

namespace station {

namespace {

constexpr Seconds kPatience{60};
constexpr int kBetweenLooksMs = 2;

bool endsWith(const std::string& text, std::string_view ending) {
    return text.size() >= ending.size() &&
           text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

} // namespace

Keyboard::Keyboard() : m_person(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    std::array<char, 64> path = {};
    const bool isMade = m_person && ::grantpt(m_person.get()) == 0 && ::unlockpt(m_person.get()) == 0 &&
                        ::ptsname_r(m_person.get(), path.data(), path.size()) == 0;
    if (isMade)
        m_terminal.reset(::open(path.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!m_terminal)
        throw std::system_error(errno, std::system_category(), "posix_openpt");
}

void Keyboard::type(std::string_view keys) const {
    ASSERT_EQ(::write(m_person.get(), keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

std::string Keyboard::seeUntil(std::string_view ending) {
    const Deadline deadline = Deadline::after(kPatience);
    std::string seen;
    while (!endsWith(seen, ending)) {
        pollfd entry = {m_person.get(), POLLIN, 0};
        char byte = 0;
        if (::poll(&entry, 1, deadline.pollMilliseconds()) <= 0 ||
            ::read(m_person.get(), &byte, 1) != 1) {
            ADD_FAILURE() << "shown instead: " << seen;
            return seen;
        }
        seen += byte;
    }
    return seen;
}

bool Keyboard::isCooked() const {
    termios attributes = {};
    EXPECT_EQ(::tcgetattr(m_terminal.get(), &attributes), 0);
    constexpr tcflag_t kCooked = ICANON | ECHO | ISIG;
    return (attributes.c_lflag & kCooked) == kCooked && (attributes.c_oflag & OPOST) != 0;
}

void Keyboard::waitUntilRaw() const {
    const Deadline deadline = Deadline::after(kPatience);
    while (isCooked()) {
        if (deadline.expired()) {
            ADD_FAILURE() << "the terminal stays as it is";
            return;
        }
        ::poll(nullptr, 0, kBetweenLooksMs);
    }
}

} // namespace station
