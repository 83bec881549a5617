#include "runtime/ThreadAttributes.h"

#include <utility>

#include "platform/ThreadTraits.h"

namespace System {

ThreadAttributes::ThreadAttributes()
    : m_initialised(pthread_attr_init(&m_attributes) == 0), m_valid(m_initialised && setAll()) {}

ThreadAttributes::~ThreadAttributes() {
    destroy();
}

int ThreadAttributes::destroy() {
    m_valid = false;
    return std::exchange(m_initialised, false) ? pthread_attr_destroy(&m_attributes) : 0;
}

bool ThreadAttributes::setAll() {
    return pthread_attr_setdetachstate(&m_attributes, PTHREAD_CREATE_DETACHED) == 0 &&
           pthread_attr_setguardsize(&m_attributes, kGuardBytes) == 0 &&
           pthread_attr_setstacksize(&m_attributes, kStackBytes) == 0 &&
           preallocateStack(m_attributes, kPreallocatedBytes) != StackPreallocation::Failed;
}

} // namespace System
