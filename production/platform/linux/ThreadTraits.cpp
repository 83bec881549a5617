#include "platform/ThreadTraits.h"

#include <cstring>

namespace System {

StackPreallocation preallocateStack(pthread_attr_t&, std::size_t) {
    return StackPreallocation::Unsupported;
}

void nameThread(pthread_t thread, const char* name) {
    char cut[16]; // the kernel's limit, with the terminating zero
    std::strncpy(cut, name, sizeof cut - 1);
    cut[sizeof cut - 1] = '\0';
    pthread_setname_np(thread, cut);
}

} // namespace System
