#include "platform/ThreadTraits.h"

#include <sys/neutrino.h>

#include <string>

namespace System {

StackPreallocation preallocateStack(pthread_attr_t& attributes, std::size_t bytes) {
    return ::pthread_attr_setstackprealloc(&attributes, bytes) == 0 ? StackPreallocation::Done
                                                                    : StackPreallocation::Failed;
}

void nameThread(pthread_t thread, const char* name) {
    // The limit may or may not count the terminating zero.
    const std::string cut = std::string(name).substr(0, _NTO_THREAD_NAME_MAX - 1);
    ::pthread_setname_np(thread, cut.c_str());
}

} // namespace System
