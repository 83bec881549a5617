#include "platform/DriverLibrary.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>

namespace System {

DriverLibrary DriverLibrary::load(const char* name) {
    // This loader refuses mode 0. What a library lacks is better found out now than in a later call.
    DriverLibrary library(::dlopen(name, RTLD_NOW | RTLD_LOCAL));
    // It explains itself in a text and leaves no error number behind.
    if (!library && ::access(name, R_OK) == 0)
        errno = ENOEXEC;
    return library;
}

DriverLibrary::~DriverLibrary() {
    if (m_handle != nullptr)
        ::dlclose(m_handle);
}

void* DriverLibrary::symbol(const char* name) const {
    return m_handle == nullptr ? nullptr : ::dlsym(m_handle, name);
}

} // namespace System
