// Sockets, terminals and drivers, and waiting for them.
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <termios.h>

#include <cstdarg>

#include "support/failing_calls/Gate.h"

namespace {

using Gate::Call;
using Gate::Repetition;

const Call s_poll("poll", {ENOMEM, EINVAL, Repetition::AfterSignal});
const Call s_socket("socket", {EMFILE, ENOBUFS});
const Call s_connect("connect", {ECONNREFUSED, ENOMEM});
const Call s_accept("accept4", {EMFILE, ENOBUFS, Repetition::AfterSignal});
const Call s_setOption("setsockopt", {ENOBUFS, ENOMEM});
const Call s_shutdown("shutdown", {ENOTCONN, ENOBUFS});
// None of the daemon's may be repeated: the device may have done a part of it.
const Call s_ioctl("ioctl", {EIO, ENODEV});
const Call s_getAttributes("tcgetattr", {EIO, ENOTTY});
const Call s_setAttributes("tcsetattr", {EIO, ENOTTY, Repetition::AfterSignal});
const Call s_flush("tcflush", {EIO, ENOTTY});

} // namespace

IN_FRONT int poll(pollfd* events, nfds_t count, int milliseconds) {
    return Gate::attempt(s_poll, ::poll, events, count, milliseconds);
}

IN_FRONT int socket(int domain, int type, int protocol) noexcept {
    return Gate::attempt(s_socket, ::socket, domain, type, protocol);
}

IN_FRONT int connect(int socket, const sockaddr* address, socklen_t size) {
    return Gate::attempt(s_connect, ::connect, socket, address, size);
}

IN_FRONT int accept4(int socket, sockaddr* address, socklen_t* size, int flags) {
    return Gate::attempt(s_accept, ::accept4, socket, address, size, flags);
}

IN_FRONT int setsockopt(int socket, int level, int name, const void* value, socklen_t size) noexcept {
    return Gate::attempt(s_setOption, ::setsockopt, socket, level, name, value, size);
}

IN_FRONT int shutdown(int socket, int how) noexcept {
    return Gate::attempt(s_shutdown, ::shutdown, socket, how);
}

IN_FRONT int ioctl(int file, unsigned long request, ...) noexcept {
    va_list rest;
    va_start(rest, request);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    return Gate::attempt(s_ioctl, ::ioctl, file, request, argument);
}

IN_FRONT int tcgetattr(int file, termios* attributes) noexcept {
    return Gate::attempt(s_getAttributes, ::tcgetattr, file, attributes);
}

IN_FRONT int tcsetattr(int file, int actions, const termios* attributes) noexcept {
    return Gate::attempt(s_setAttributes, ::tcsetattr, file, actions, attributes);
}

IN_FRONT int tcflush(int file, int queues) noexcept {
    return Gate::attempt(s_flush, ::tcflush, file, queues);
}
