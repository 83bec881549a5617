#include "support/DeviceCalls.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace {

std::atomic<DeviceCalls*> s_current{nullptr};
thread_local bool s_isAside = false;

DeviceCalls* current() {
    return s_isAside ? nullptr : s_current.load();
}

template <typename Function, typename... Arguments>
auto call(const char* name, Function real, Arguments... arguments) {
    return CallScript::call(current(), name, real, arguments...);
}

} // namespace

DeviceCalls::DeviceCalls() {
    s_current = this;
}

DeviceCalls::~DeviceCalls() {
    s_current = nullptr;
}

void DeviceCalls::watch(const void* object, std::size_t bytes) {
    m_watched = static_cast<const char*>(object);
    m_watchedBytes = bytes;
}

bool DeviceCalls::watches(const void* mutex) const {
    const char* const address = static_cast<const char*>(mutex);
    return m_watched != nullptr && address >= m_watched && address < m_watched + m_watchedBytes;
}

DeviceCalls::Aside::Aside() : m_before(std::exchange(s_isAside, true)) {}

DeviceCalls::Aside::~Aside() {
    s_isAside = m_before;
}

extern "C" {

int __real_tcgetattr(int, termios*);
int __wrap_tcgetattr(int device, termios* attributes) {
    return call("tcgetattr", __real_tcgetattr, device, attributes);
}

int __real_tcsetattr(int, int, const termios*);
int __wrap_tcsetattr(int device, int action, const termios* attributes) {
    if (DeviceCalls* calls = current()) {
        calls->lastSet = *attributes;
        calls->lastSetAction = action;
    }
    return call("tcsetattr", __real_tcsetattr, device, action, attributes);
}

int __real_cfsetospeed(termios*, speed_t);
int __wrap_cfsetospeed(termios* attributes, speed_t speed) {
    return call("cfsetospeed", __real_cfsetospeed, attributes, speed);
}

int __real_cfsetispeed(termios*, speed_t);
int __wrap_cfsetispeed(termios* attributes, speed_t speed) {
    return call("cfsetispeed", __real_cfsetispeed, attributes, speed);
}

void __real_cfmakeraw(termios*);
void __wrap_cfmakeraw(termios* attributes) {
    if (DeviceCalls* calls = current()) {
        calls->beforeRaw = *attributes;
        calls->note("cfmakeraw");
    }
    __real_cfmakeraw(attributes);
}

// System::makeRaw(termios&): the system's own function cannot fail, the seam's can.
bool __real__ZN6System7makeRawER7termios(termios&);
bool __wrap__ZN6System7makeRawER7termios(termios& attributes) {
    DeviceCalls* calls = current();
    if (calls != nullptr && calls->isScripted("makeRaw"))
        return calls->on("makeRaw").value_or(0) == 0;
    return __real__ZN6System7makeRawER7termios(attributes);
}

int __real_tcflush(int, int);
int __wrap_tcflush(int device, int selector) {
    if (DeviceCalls* calls = current())
        calls->lastFlushSelector = selector;
    return call("tcflush", __real_tcflush, device, selector);
}

int __real_fflush(std::FILE*);
int __wrap_fflush(std::FILE* stream) {
    const bool isDevice = stream != nullptr && stream != stdout && stream != stderr;
    return CallScript::call(isDevice ? current() : nullptr, "fflush", __real_fflush, stream);
}

int __real_poll(pollfd*, nfds_t, int);
int __wrap_poll(pollfd* events, nfds_t count, int limit) {
    DeviceCalls* calls = current();
    if (events == nullptr || calls == nullptr)
        return __real_poll(events, count, limit);
    calls->notePollLimit(limit);
    const std::optional<long> result = calls->on("poll");
    if (!result)
        return __real_poll(events, count, limit);
    events->revents = *result > 0 ? calls->pollEvents : static_cast<short>(0);
    return static_cast<int>(*result);
}

ssize_t __real_read(int, void*, std::size_t);
ssize_t __wrap_read(int device, void* buffer, std::size_t length) {
    return call("read", __real_read, device, buffer, length);
}

ssize_t __real_write(int, const void*, std::size_t);
ssize_t __wrap_write(int device, const void* buffer, std::size_t length) {
    return call("write", __real_write, device, buffer, length);
}

int __real_pthread_mutex_lock(pthread_mutex_t*);
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
    DeviceCalls* calls = current();
    const int result = __real_pthread_mutex_lock(mutex);
    if (calls != nullptr && calls->watches(mutex))
        calls->note("lock");
    return result;
}

int __real_pthread_mutex_unlock(pthread_mutex_t*);
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
    DeviceCalls* calls = current();
    if (calls != nullptr && calls->watches(mutex))
        calls->note("unlock");
    return __real_pthread_mutex_unlock(mutex);
}

} // extern "C"
