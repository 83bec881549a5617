#include "runtime/Mutex.h"

namespace System {

Mutex::Mutex(Type type) {
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0)
        return;
    const int kind = type == Normal ? PTHREAD_MUTEX_NORMAL : PTHREAD_MUTEX_RECURSIVE;
    m_valid = pthread_mutexattr_settype(&attributes, kind) == 0 &&
              pthread_mutex_init(&m_mutex, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
}

Mutex::~Mutex() {
    if (m_valid)
        pthread_mutex_destroy(&m_mutex);
}

bool Mutex::lock() {
    return m_valid && pthread_mutex_lock(&m_mutex) == 0;
}

bool Mutex::unlock() {
    return m_valid && pthread_mutex_unlock(&m_mutex) == 0;
}

} // namespace System
