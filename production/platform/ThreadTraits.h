#pragma once

#include <pthread.h>

#include <cstddef>

namespace System {

enum class StackPreallocation {
    Done,
    Unsupported, ///< this system commits stack pages on first touch; nothing was changed
    Failed
};

/// Asks for the first `bytes` of the stacks made with these attributes to be committed in advance.
StackPreallocation preallocateStack(pthread_attr_t& attributes, std::size_t bytes);

/// Gives a running thread its name for debuggers and process listings, cut to what the system takes.
void nameThread(pthread_t thread, const char* name);

} // namespace System
