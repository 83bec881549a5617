// What moves bytes.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "support/failing_calls/Gate.h"

namespace {

using Gate::Call;
using Gate::Repetition;

const Call s_read("read", {EIO, ENOMEM, Repetition::WhenReady});
const Call s_pread("pread", {EIO, ENOMEM, Repetition::AfterSignal});
const Call s_write("write", {EIO, ENOSPC, Repetition::WhenReady});
const Call s_recv("recv", {ECONNRESET, ENOMEM, Repetition::WhenReady});
const Call s_send("send", {ENOBUFS, ENOMEM, Repetition::WhenReady});
const Call s_flags("fcntl", {});

bool waits(int file) {
    return (s_flags.original(::fcntl)(file, F_GETFL) & O_NONBLOCK) == 0;
}

bool waits(int socket, int flags) {
    return (flags & MSG_DONTWAIT) == 0 && waits(socket);
}

/// How many of those bytes can be read now, where the system tells.
std::size_t present(int file, std::size_t size) {
    int count = 0;
    return ::ioctl(file, FIONREAD, &count) == 0 && count > 0
               ? std::min(size, static_cast<std::size_t>(count))
               : size;
}

/// A packet goes whole or not at all.
bool isPacketSocket(int file) {
    int type = 0;
    socklen_t size = sizeof type;
    return ::getsockopt(file, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type != SOCK_STREAM;
}

std::size_t halfRead(const Call& call, int file, std::size_t size, const void* caller) {
    const std::size_t there = present(file, size);
    if (there < 2 || isPacketSocket(file) || !call.isHalved(Fault::HalfRead, caller))
        return size;
    return there / 2;
}

std::size_t halfWritten(const Call& call, int file, std::size_t size, const void* caller) {
    if (size < 2 || isPacketSocket(file) || !call.isHalved(Fault::HalfWrite, caller))
        return size;
    return size / 2;
}

} // namespace

IN_FRONT ssize_t read(int file, void* bytes, std::size_t size) {
    const void* caller = __builtin_return_address(0);
    if (s_read.fails(caller, waits(file)))
        return -1;
    return s_read.original(::read)(file, bytes, halfRead(s_read, file, size, caller));
}

IN_FRONT ssize_t pread(int file, void* bytes, std::size_t size, off_t position) {
    const void* caller = __builtin_return_address(0);
    if (s_pread.fails(caller))
        return -1;
    return s_pread.original(::pread)(file, bytes, halfRead(s_pread, file, size, caller), position);
}

IN_FRONT ssize_t write(int file, const void* bytes, std::size_t size) {
    const void* caller = __builtin_return_address(0);
    if (s_write.fails(caller, waits(file)))
        return -1;
    return s_write.original(::write)(file, bytes, halfWritten(s_write, file, size, caller));
}

IN_FRONT ssize_t recv(int socket, void* bytes, std::size_t size, int flags) {
    const void* caller = __builtin_return_address(0);
    if (s_recv.fails(caller, waits(socket, flags)))
        return -1;
    return s_recv.original(::recv)(socket, bytes, halfRead(s_recv, socket, size, caller), flags);
}

IN_FRONT ssize_t send(int socket, const void* bytes, std::size_t size, int flags) {
    const void* caller = __builtin_return_address(0);
    if (s_send.fails(caller, waits(socket, flags)))
        return -1;
    return s_send.original(::send)(socket, bytes, halfWritten(s_send, socket, size, caller), flags);
}
