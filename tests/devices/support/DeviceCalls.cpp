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

/// The scripted result of a call that returns an int, if there is one.
std::optional<int> scripted(const char* function) {
    DeviceCalls* calls = current();
    const std::optional<long> result = calls == nullptr ? std::nullopt : calls->on(function);
    return result ? std::optional<int>(static_cast<int>(*result)) : std::nullopt;
}

} // namespace

DeviceCalls::DeviceCalls() {
    s_current = this;
}

DeviceCalls::~DeviceCalls() {
    s_current = nullptr;
    for (const auto& [function, steps] : m_script)
        EXPECT_TRUE(steps.empty()) << steps.size() << " scripted calls of " << function << " never came";
}

void DeviceCalls::script(const std::string& function, const std::vector<Step>& steps) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_script[function].insert(m_script[function].end(), steps.begin(), steps.end());
}

DeviceCalls::Step DeviceCalls::failing(int error) {
    return [error]() -> std::optional<long> {
        errno = error;
        return -1;
    };
}

DeviceCalls::Step DeviceCalls::returning(long result) {
    return [result]() -> std::optional<long> { return result; };
}

DeviceCalls::Step DeviceCalls::passing() {
    return [] { return std::optional<long>(); };
}

DeviceCalls::Step DeviceCalls::after(std::function<void()> action) {
    return [action = std::move(action)] {
        const int error = errno;
        action();
        errno = error;
        return std::optional<long>();
    };
}

void DeviceCalls::watch(const void* object, std::size_t bytes) {
    m_watched = static_cast<const char*>(object);
    m_watchedBytes = bytes;
}

std::vector<std::string> DeviceCalls::all() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
}

void DeviceCalls::forget() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.clear();
    m_pollLimits.clear();
}

std::vector<int> DeviceCalls::pollLimits() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_pollLimits;
}

std::optional<long> DeviceCalls::on(const char* function) {
    Step step;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_calls.emplace_back(function);
        std::deque<Step>& steps = m_script[function];
        if (steps.empty())
            return std::nullopt;
        step = std::move(steps.front());
        steps.pop_front();
    }
    return step();
}

bool DeviceCalls::isScripted(const char* function) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto steps = m_script.find(function);
    return steps != m_script.end() && !steps->second.empty();
}

void DeviceCalls::notePollLimit(int limit) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_pollLimits.push_back(limit);
}

bool DeviceCalls::watches(const void* mutex) const {
    const char* const address = static_cast<const char*>(mutex);
    return m_watched != nullptr && address >= m_watched && address < m_watched + m_watchedBytes;
}

void DeviceCalls::note(const char* what) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.emplace_back(what);
}

DeviceCalls::Aside::Aside() : m_before(std::exchange(s_isAside, true)) {}

DeviceCalls::Aside::~Aside() {
    s_isAside = m_before;
}

extern "C" {

int __real_tcgetattr(int, termios*);
int __wrap_tcgetattr(int device, termios* attributes) {
    const std::optional<int> result = scripted("tcgetattr");
    return result ? *result : __real_tcgetattr(device, attributes);
}

int __real_tcsetattr(int, int, const termios*);
int __wrap_tcsetattr(int device, int action, const termios* attributes) {
    if (DeviceCalls* calls = current()) {
        calls->lastSet = *attributes;
        calls->lastSetAction = action;
    }
    const std::optional<int> result = scripted("tcsetattr");
    return result ? *result : __real_tcsetattr(device, action, attributes);
}

int __real_cfsetospeed(termios*, speed_t);
int __wrap_cfsetospeed(termios* attributes, speed_t speed) {
    const std::optional<int> result = scripted("cfsetospeed");
    return result ? *result : __real_cfsetospeed(attributes, speed);
}

int __real_cfsetispeed(termios*, speed_t);
int __wrap_cfsetispeed(termios* attributes, speed_t speed) {
    const std::optional<int> result = scripted("cfsetispeed");
    return result ? *result : __real_cfsetispeed(attributes, speed);
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
    const std::optional<int> result = scripted("tcflush");
    return result ? *result : __real_tcflush(device, selector);
}

int __real_fflush(std::FILE*);
int __wrap_fflush(std::FILE* stream) {
    const bool isDevice = stream != nullptr && stream != stdout && stream != stderr;
    const std::optional<int> result = isDevice ? scripted("fflush") : std::nullopt;
    return result ? *result : __real_fflush(stream);
}

int __real_poll(pollfd*, nfds_t, int);
int __wrap_poll(pollfd* events, nfds_t count, int limit) {
    DeviceCalls* calls = current();
    if (events == nullptr || calls == nullptr)
        return __real_poll(events, count, limit);
    calls->notePollLimit(limit);
    const std::optional<int> result = scripted("poll");
    if (!result)
        return __real_poll(events, count, limit);
    events->revents = *result > 0 ? calls->pollEvents : static_cast<short>(0);
    return *result;
}

ssize_t __real_read(int, void*, std::size_t);
ssize_t __wrap_read(int device, void* buffer, std::size_t length) {
    const std::optional<int> result = scripted("read");
    return result ? *result : __real_read(device, buffer, length);
}

ssize_t __real_write(int, const void*, std::size_t);
ssize_t __wrap_write(int device, const void* buffer, std::size_t length) {
    const std::optional<int> result = scripted("write");
    return result ? *result : __real_write(device, buffer, length);
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
