#include "line/Adapter.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "support/Waiting.h"

namespace {

constexpr char kFreshLink[] = "/dev/usbserialadapter1.fresh";

} // namespace

void Adapter::pull() {
    ::unlink(kNode);
    remove();
}

void Adapter::plug() {
    PseudoTerminal::operator=(PseudoTerminal());
    place();
}

void Adapter::place() const {
    makeRaw();
    // The node appears whole, in place of another one if need be.
    ::unlink(kFreshLink);
    if (::symlink(path().c_str(), kFreshLink) != 0 || std::rename(kFreshLink, kNode) != 0)
        throw std::runtime_error(std::string(kNode) + ": " + std::strerror(errno));
}

void Adapter::waitUntilTaken() const {
    // Unlike asking for the number of bytes, polling has the terminal deliver what is on its way first.
    const auto isTaken = [this] {
        pollfd event{terminal(), POLLIN, 0};
        return ::poll(&event, 1, 0) == 0;
    };
    if (!eventually(isTaken))
        throw std::runtime_error("the daemon does not read its line");
}
