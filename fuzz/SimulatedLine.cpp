#include "SimulatedLine.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <utility>

#include "Expect.h"

namespace {

constexpr std::string_view kLinePath = "/dev/usbserialadapter1";
constexpr std::string_view kRevisionPath = "/dev/nvsku/rev";
constexpr std::string_view kRevision = "1A";

// A request's own bytes and its acknowledgement are waited for no longer than this.
constexpr int kLongestWithinRequest = 500;

// The dispatcher sends over the line, too.
std::atomic<SimulatedLine*> s_line{nullptr};
std::atomic<int> s_descriptor{-1}; // of the line

/// The line, when `descriptor` stands for it.
SimulatedLine* lineOf(int descriptor) {
    return descriptor == s_descriptor ? s_line.load() : nullptr;
}

} // namespace

SimulatedLine::SimulatedLine(const Schedule& schedule, std::size_t room, std::function<void()> closePort,
                             std::function<void()> atEnd)
    : m_reader(schedule), m_room(room), m_closePort(std::move(closePort)), m_atEnd(std::move(atEnd)) {
    s_line = this;
}

SimulatedLine::~SimulatedLine() {
    s_line = nullptr;
    s_descriptor = -1;
}

short SimulatedLine::poll(short events, int limit) {
    const auto writable = static_cast<short>(events & POLLOUT);
    if ((events & POLLIN) != 0 && m_reader.isReady() && !m_reader.isReady(Schedule::Taking))
        return static_cast<short>(POLLIN | writable);
    if (writable != 0)
        return writable;
    expect(limit >= 0, "Nobody waits for the station without end");
    const bool hasCome = m_reader.wait(static_cast<std::uint64_t>(limit));
    if (hasCome && m_reader.isReady(Schedule::Taking)) {
        m_reader.take();
        m_closePort();
        return 0;
    }
    if (hasCome)
        return POLLIN;
    if (m_reader.isAtEnd() && limit > kLongestWithinRequest)
        m_atEnd();
    return 0;
}

long SimulatedLine::read(char* bytes, std::size_t count) {
    if (m_reader.isReady(Schedule::HangUp)) {
        m_reader.take();
        errno = EIO;
        return -1;
    }
    std::size_t taken = 0;
    for (; taken < count && m_reader.isReady(Schedule::Byte); ++taken) {
        bytes[taken] = m_reader.next().byte;
        m_reader.take();
    }
    if (taken > 0)
        return static_cast<long>(taken);
    errno = EAGAIN;
    return -1;
}

std::size_t SimulatedLine::write(std::string_view bytes) {
    const std::string_view taken = bytes.substr(0, m_room);
    m_sent += taken;
    return taken.size();
}

extern "C" {

int __real_open(const char*, int, ...);
int __wrap_open(const char* path, int flags, ...) {
    if (path == kRevisionPath) {
        const int file = ::memfd_create("revision", 0);
        expect(::pwrite(file, kRevision.data(), kRevision.size(), 0) > 0, "There is a revision");
        return file;
    }
    if (path != kLinePath)
        return __real_open(path, flags); // nothing is created here, which would take a mode
    s_descriptor = __real_open("/dev/null", flags);
    return s_descriptor;
}

int __real_stat(const char*, struct stat*);
int __wrap_stat(const char* path, struct stat* information) {
    return __real_stat(path == kLinePath ? "/dev/null" : path, information);
}

int __real_tcgetattr(int, termios*);
int __wrap_tcgetattr(int device, termios* attributes) {
    return lineOf(device) != nullptr ? 0 : __real_tcgetattr(device, attributes);
}

int __real_tcsetattr(int, int, const termios*);
int __wrap_tcsetattr(int device, int action, const termios* attributes) {
    return lineOf(device) != nullptr ? 0 : __real_tcsetattr(device, action, attributes);
}

int __real_poll(pollfd*, nfds_t, int);
int __wrap_poll(pollfd* events, nfds_t count, int limit) {
    SimulatedLine* const line = lineOf(events[0].fd);
    if (line == nullptr)
        return __real_poll(events, count, limit);
    // Whatever else is waited for comes from within the daemon.
    const int others = __real_poll(events + 1, count - 1, 0);
    events[0].revents = line->poll(events[0].events, others > 0 ? 0 : limit);
    return others + (events[0].revents != 0 ? 1 : 0);
}

int __real_nanosleep(const timespec*, timespec*);
int __wrap_nanosleep(const timespec* length, timespec* left) {
    return s_line != nullptr ? 0 : __real_nanosleep(length, left); // a pause takes no time
}

ssize_t __real_read(int, void*, size_t);
ssize_t __wrap_read(int descriptor, void* bytes, size_t count) {
    SimulatedLine* const line = lineOf(descriptor);
    return line == nullptr ? __real_read(descriptor, bytes, count)
                           : line->read(static_cast<char*>(bytes), count);
}

ssize_t __real_write(int, const void*, size_t);
ssize_t __wrap_write(int descriptor, const void* bytes, size_t count) {
    if (SimulatedLine* const line = lineOf(descriptor))
        return static_cast<ssize_t>(line->write({static_cast<const char*>(bytes), count}));
    if (descriptor == STDERR_FILENO && s_line != nullptr)
        return static_cast<ssize_t>(count);
    return __real_write(descriptor, bytes, count);
}

} // extern "C"

using SteadyTime = std::chrono::steady_clock::time_point;

// std::chrono::steady_clock::now(), under the names that the linker gives it.
SteadyTime realNow() __asm__("__real__ZNSt6chrono3_V212steady_clock3nowEv");
SteadyTime simulatedNow() __asm__("__wrap__ZNSt6chrono3_V212steady_clock3nowEv");

SteadyTime simulatedNow() {
    const SimulatedLine* const line = s_line;
    if (line == nullptr)
        return realNow();
    return SteadyTime(std::chrono::hours(1) + std::chrono::milliseconds(line->now()));
}
