#include "platform/Terminal.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/DeviceManager.h"

namespace System {
namespace {

/// Of a stream that the system has opened in its own way.
bool prepare(int descriptor) {
    if (::fcntl(descriptor, F_SETFD, FD_CLOEXEC) == -1)
        return false;
    const int flags = ::fcntl(descriptor, F_GETFL, 0);
    return flags != -1 && ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) != -1;
}

} // namespace

// Without O_NOCTTY, as all devices are opened here: a line can only become the controlling terminal of a
// session's leader, and the daemon is not to be started as one.
Descriptor openTerminal(const char* path) {
    return openDevice(path);
}

std::FILE* openTerminalStream(const char* path) {
    std::FILE* stream = ::fopen64(path, "rb+");
    if (stream == nullptr)
        return nullptr;
    if (prepare(fileno(stream)))
        return stream;
    const int error = errno;
    std::fclose(stream);
    errno = error;
    return nullptr;
}

// A speed is its own encoding.
bool setOutputSpeed(termios& attributes, unsigned baud) {
    return ::cfsetospeed(&attributes, static_cast<speed_t>(baud)) == 0;
}

bool setInputSpeed(termios& attributes, unsigned baud) {
    return ::cfsetispeed(&attributes, static_cast<speed_t>(baud)) == 0;
}

bool makeRaw(termios& attributes) {
    return ::cfmakeraw(&attributes) == 0;
}

} // namespace System
