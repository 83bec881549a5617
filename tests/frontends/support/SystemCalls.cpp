#include "support/SystemCalls.h"

#include <pthread.h>
#include <sys/socket.h>

#include <atomic>
#include <cerrno>
#include <mutex>

namespace {

std::atomic<int> s_failingOptions{0};
std::atomic<int> s_failingThreads{0};
std::atomic<int> s_threadAttempts{0};
std::atomic<int> s_failingSends{0};
std::atomic<int> s_sendError{0};
std::mutex s_mutex; // guards the next
SystemCalls::ThreadMade s_lastThread{};

bool takeOne(std::atomic<int>& left) {
    int value = left;
    while (value > 0)
        if (left.compare_exchange_weak(value, value - 1))
            return true;
    return false;
}

void note(const pthread_attr_t* attributes) {
    const std::lock_guard<std::mutex> lock(s_mutex);
    pthread_attr_getdetachstate(attributes, &s_lastThread.detachState);
    pthread_attr_getguardsize(attributes, &s_lastThread.guardBytes);
    pthread_attr_getstacksize(attributes, &s_lastThread.stackBytes);
    ++s_threadAttempts;
}

} // namespace

namespace SystemCalls {

void failSocketOptions(int calls) {
    s_failingOptions = calls;
}

void failThreads(int calls) {
    s_failingThreads = calls;
}

void failSends(int calls, int error) {
    s_sendError = error;
    s_failingSends = calls;
}

ThreadMade lastThread() {
    const std::lock_guard<std::mutex> lock(s_mutex);
    return s_lastThread;
}

int threadAttempts() {
    return s_threadAttempts;
}

} // namespace SystemCalls

extern "C" {

int __real_setsockopt(int, int, int, const void*, socklen_t);
int __wrap_setsockopt(int socket, int level, int option, const void* value, socklen_t size) {
    if (takeOne(s_failingOptions)) {
        errno = EINVAL;
        return -1;
    }
    return __real_setsockopt(socket, level, option, value, size);
}

ssize_t __real_send(int, const void*, size_t, int);
ssize_t __wrap_send(int socket, const void* bytes, size_t size, int flags) {
    if (takeOne(s_failingSends)) {
        errno = s_sendError;
        return -1;
    }
    return __real_send(socket, bytes, size, flags);
}

int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*),
                          void* argument) {
    if (attributes != nullptr) {
        note(attributes);
        if (takeOne(s_failingThreads))
            return EAGAIN;
    }
    return __real_pthread_create(thread, attributes, entry, argument);
}

} // extern "C"
