// The calls that open, prepare, feed and close descriptors.
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/types.h>

#include <cstdarg>
#include <cstdio>
#include <string>

#include "fake/FakeSystem.h"

using namespace FakeSystem;
using std::to_string;

namespace {

constexpr int kPipeReadEnd = 21;
constexpr int kPipeWriteEnd = 22;

} // namespace

extern "C" {

int __wrap_open64(const char* path, int oflag, ...) {
    return recordInt("open64", {text(path), hex(oflag)});
}

int __wrap_access(const char* path, int mode) {
    return recordInt("access", {text(path), hex(mode)});
}

int __wrap_fcntl(int fildes, int cmd, ...) {
    va_list arguments;
    va_start(arguments, cmd);
    const int argument = va_arg(arguments, int);
    va_end(arguments);
    return recordInt("fcntl", {to_string(fildes), to_string(cmd), hex(argument)});
}

int __wrap_close(int fildes) {
    return recordInt("close", {to_string(fildes)});
}

/// A stream that can be used and closed, whatever was asked for.
std::FILE* __real_fopen64(const char* path, const char* mode);
std::FILE* __wrap_fopen64(const char* path, const char* mode) {
    const bool refused = record("fopen64", {text(path), text(mode)}).value == -1;
    return refused ? nullptr : __real_fopen64("/dev/null", "rb+");
}

int __real_fclose(std::FILE* stream);
int __wrap_fclose(std::FILE* stream) {
    record("fclose", {});
    return __real_fclose(stream);
}

int __wrap_socket(int domain, int type, int protocol) {
    return recordInt("socket", {to_string(domain), to_string(type), to_string(protocol)});
}

int __wrap_accept(int socket, struct sockaddr* address, socklen_t* length) {
    return recordInt("accept", {to_string(socket), pointer(address), pointer(length)});
}

int __wrap_pipe(int* ends) {
    const long value = record("pipe", {}).value;
    if (value == 0) {
        ends[0] = kPipeReadEnd;
        ends[1] = kPipeWriteEnd;
    }
    return static_cast<int>(value);
}

/// Takes everything, unless a result says otherwise.
ssize_t __wrap_write(int fildes, const void* bytes, std::size_t size) {
    const std::string content(static_cast<const char*>(bytes), size);
    return record("write", {to_string(fildes), text(content.c_str())}, static_cast<long>(size)).value;
}

ssize_t __wrap_read(int fildes, void* bytes, std::size_t size) {
    const Result result = record("read", {to_string(fildes), to_string(size)});
    deliver(result, bytes, size);
    return result.value;
}

ssize_t __wrap_pread(int fildes, void* bytes, std::size_t size, off_t position) {
    const Result result = record("pread", {to_string(fildes), to_string(size), to_string(position)});
    deliver(result, bytes, size);
    return result.value;
}

off_t __wrap_lseek(int fildes, off_t position, int whence) {
    return record("lseek", {to_string(fildes), to_string(position), to_string(whence)}, position).value;
}

// Where 64-bit sizes have calls of their own.
ssize_t __wrap_pread64(int fildes, void* bytes, std::size_t size, off_t position) {
    return __wrap_pread(fildes, bytes, size, position);
}

off_t __wrap_lseek64(int fildes, off_t position, int whence) {
    return __wrap_lseek(fildes, position, whence);
}

int __wrap_poll(pollfd* events, nfds_t count, int milliseconds) {
    std::string waited;
    for (nfds_t at = 0; at < count; ++at)
        waited += to_string(events[at].fd) + ":" + hex(events[at].events);
    return recordInt("poll", {waited, to_string(milliseconds)}, 1);
}

} // extern "C"
