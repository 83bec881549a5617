#include "platform/Terminal.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>

#include "platform/Uninterrupted.h"

namespace System {
namespace {

struct Speed {
    unsigned baud;
    speed_t encoding;
};

constexpr std::array<Speed, 17> kSpeeds = {{{50, B50},
                                            {75, B75},
                                            {110, B110},
                                            {134, B134},
                                            {150, B150},
                                            {200, B200},
                                            {300, B300},
                                            {600, B600},
                                            {1200, B1200},
                                            {1800, B1800},
                                            {2400, B2400},
                                            {4800, B4800},
                                            {9600, B9600},
                                            {19200, B19200},
                                            {38400, B38400},
                                            {57600, B57600},
                                            {115200, B115200}}};

bool setSpeed(termios& attributes, unsigned baud, int (*set)(termios*, speed_t)) {
    const auto* speed = std::find_if(std::begin(kSpeeds), std::end(kSpeeds),
                                     [baud](const Speed& known) { return known.baud == baud; });
    if (speed == std::end(kSpeeds)) {
        errno = EINVAL;
        return false;
    }
    return set(&attributes, speed->encoding) == 0;
}

} // namespace

Descriptor openTerminal(const char* path) {
    constexpr int kFlags = O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    return Descriptor(uninterrupted([path] { return ::open(path, kFlags); }));
}

std::FILE* openTerminalStream(const char* path) {
    Descriptor device = openTerminal(path);
    if (!device)
        return nullptr;
    std::FILE* stream = ::fdopen(device.get(), "rb+");
    if (stream != nullptr)
        device.release();
    return stream;
}

bool setOutputSpeed(termios& attributes, unsigned baud) {
    return setSpeed(attributes, baud, ::cfsetospeed);
}

bool setInputSpeed(termios& attributes, unsigned baud) {
    return setSpeed(attributes, baud, ::cfsetispeed);
}

bool makeRaw(termios& attributes) {
    ::cfmakeraw(&attributes);
    return true;
}

} // namespace System
