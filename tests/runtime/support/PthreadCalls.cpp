#include "support/PthreadCalls.h"

#include <cerrno>

namespace {

PthreadCalls* s_calls = nullptr;

bool failsNow(const char* function) {
    return s_calls != nullptr && s_calls->failsNow(function);
}

bool isFailing(const char* function) {
    return s_calls != nullptr && s_calls->isFailing(function);
}

} // namespace

PthreadCalls::PthreadCalls() {
    s_calls = this;
}

PthreadCalls::~PthreadCalls() {
    s_calls = nullptr;
}

int PthreadCalls::count(const std::string& function) const {
    const auto found = m_counts.find(function);
    return found == m_counts.end() ? 0 : found->second;
}

bool PthreadCalls::failsNow(const std::string& function) {
    ++m_counts[function];
    return function == m_failing;
}

extern "C" {

int __real_pthread_attr_setdetachstate(pthread_attr_t*, int);
int __wrap_pthread_attr_setdetachstate(pthread_attr_t* attributes, int state) {
    return failsNow("pthread_attr_setdetachstate")
               ? EINVAL
               : __real_pthread_attr_setdetachstate(attributes, state);
}

int __real_pthread_attr_setguardsize(pthread_attr_t*, std::size_t);
int __wrap_pthread_attr_setguardsize(pthread_attr_t* attributes, std::size_t bytes) {
    return failsNow("pthread_attr_setguardsize") ? EINVAL
                                                 : __real_pthread_attr_setguardsize(attributes, bytes);
}

int __real_pthread_attr_setstacksize(pthread_attr_t*, std::size_t);
int __wrap_pthread_attr_setstacksize(pthread_attr_t* attributes, std::size_t bytes) {
    return failsNow("pthread_attr_setstacksize") ? EINVAL
                                                 : __real_pthread_attr_setstacksize(attributes, bytes);
}

int __real_pthread_condattr_init(pthread_condattr_t*);
int __wrap_pthread_condattr_init(pthread_condattr_t* attributes) {
    return failsNow("pthread_condattr_init") ? ENOMEM : __real_pthread_condattr_init(attributes);
}

int __real_pthread_condattr_setclock(pthread_condattr_t*, clockid_t);
int __wrap_pthread_condattr_setclock(pthread_condattr_t* attributes, clockid_t clock) {
    if (s_calls != nullptr)
        s_calls->clock = clock;
    return failsNow("pthread_condattr_setclock") ? EINVAL
                                                 : __real_pthread_condattr_setclock(attributes, clock);
}

int __real_pthread_cond_init(pthread_cond_t*, const pthread_condattr_t*);
int __wrap_pthread_cond_init(pthread_cond_t* condition, const pthread_condattr_t* attributes) {
    return failsNow("pthread_cond_init") ? EAGAIN : __real_pthread_cond_init(condition, attributes);
}

int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*),
                          void* argument) {
    if (s_calls != nullptr && attributes != nullptr) {
        s_calls->entry = entry;
        s_calls->argument = argument;
        pthread_attr_getdetachstate(attributes, &s_calls->detachState);
        pthread_attr_getguardsize(attributes, &s_calls->guardBytes);
        pthread_attr_getstacksize(attributes, &s_calls->stackBytes);
    }
    return failsNow("pthread_create") ? EAGAIN
                                      : __real_pthread_create(thread, attributes, entry, argument);
}

int __real_pthread_setname_np(pthread_t, const char*);
int __wrap_pthread_setname_np(pthread_t thread, const char* name) {
    return failsNow("pthread_setname_np") ? ERANGE : __real_pthread_setname_np(thread, name);
}

int __real_pthread_mutexattr_init(pthread_mutexattr_t*);
int __wrap_pthread_mutexattr_init(pthread_mutexattr_t* attributes) {
    return failsNow("pthread_mutexattr_init") ? ENOMEM : __real_pthread_mutexattr_init(attributes);
}

int __real_pthread_mutexattr_settype(pthread_mutexattr_t*, int);
int __wrap_pthread_mutexattr_settype(pthread_mutexattr_t* attributes, int type) {
    if (s_calls != nullptr)
        s_calls->mutexType = type;
    return failsNow("pthread_mutexattr_settype") ? EINVAL
                                                 : __real_pthread_mutexattr_settype(attributes, type);
}

int __real_pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*);
int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) {
    return failsNow("pthread_mutex_init") ? EAGAIN : __real_pthread_mutex_init(mutex, attributes);
}

int __real_pthread_mutex_lock(pthread_mutex_t*);
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
    return isFailing("pthread_mutex_lock") ? EINVAL : __real_pthread_mutex_lock(mutex);
}

int __real_pthread_mutex_unlock(pthread_mutex_t*);
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
    return isFailing("pthread_mutex_unlock") ? EPERM : __real_pthread_mutex_unlock(mutex);
}

int __real_pthread_cond_signal(pthread_cond_t*);
int __wrap_pthread_cond_signal(pthread_cond_t* condition) {
    return isFailing("pthread_cond_signal") ? EINVAL : __real_pthread_cond_signal(condition);
}

int __real_pthread_cond_wait(pthread_cond_t*, pthread_mutex_t*);
int __wrap_pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    return isFailing("pthread_cond_wait") ? EINVAL : __real_pthread_cond_wait(condition, mutex);
}

} // extern "C"
