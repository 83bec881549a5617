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

// The function of the system, or an error in its place if `fails` says so.
#define WRAPPED(fails, function, error, parameters, arguments)           \
    int __real_##function parameters;                                    \
    int __wrap_##function parameters {                                   \
        return fails(#function) ? (error) : __real_##function arguments; \
    }
#define COUNTED(...) WRAPPED(failsNow, __VA_ARGS__)
#define UNCOUNTED(...) WRAPPED(isFailing, __VA_ARGS__)

COUNTED(pthread_attr_setdetachstate, EINVAL, (pthread_attr_t * attributes, int state),
        (attributes, state))
COUNTED(pthread_attr_setguardsize, EINVAL, (pthread_attr_t * attributes, std::size_t bytes),
        (attributes, bytes))
COUNTED(pthread_attr_setstacksize, EINVAL, (pthread_attr_t * attributes, std::size_t bytes),
        (attributes, bytes))
COUNTED(pthread_condattr_init, ENOMEM, (pthread_condattr_t * attributes), (attributes))

int __real_pthread_condattr_setclock(pthread_condattr_t*, clockid_t);
int __wrap_pthread_condattr_setclock(pthread_condattr_t* attributes, clockid_t clock) {
    if (s_calls != nullptr)
        s_calls->clock = clock;
    return failsNow("pthread_condattr_setclock") ? EINVAL
                                                 : __real_pthread_condattr_setclock(attributes, clock);
}

COUNTED(pthread_cond_init, EAGAIN, (pthread_cond_t * condition, const pthread_condattr_t* attributes),
        (condition, attributes))

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

COUNTED(pthread_setname_np, ERANGE, (pthread_t thread, const char* name), (thread, name))
COUNTED(pthread_mutexattr_init, ENOMEM, (pthread_mutexattr_t * attributes), (attributes))

int __real_pthread_mutexattr_settype(pthread_mutexattr_t*, int);
int __wrap_pthread_mutexattr_settype(pthread_mutexattr_t* attributes, int type) {
    if (s_calls != nullptr)
        s_calls->mutexType = type;
    return failsNow("pthread_mutexattr_settype") ? EINVAL
                                                 : __real_pthread_mutexattr_settype(attributes, type);
}

COUNTED(pthread_mutex_init, EAGAIN, (pthread_mutex_t * mutex, const pthread_mutexattr_t* attributes),
        (mutex, attributes))
UNCOUNTED(pthread_mutex_lock, EINVAL, (pthread_mutex_t * mutex), (mutex))
UNCOUNTED(pthread_mutex_unlock, EPERM, (pthread_mutex_t * mutex), (mutex))
UNCOUNTED(pthread_cond_signal, EINVAL, (pthread_cond_t * condition), (condition))
UNCOUNTED(pthread_cond_wait, EINVAL, (pthread_cond_t * condition, pthread_mutex_t* mutex),
          (condition, mutex))

} // extern "C"
