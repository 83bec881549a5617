#include "platform/DriverLibrary.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/DriverLibraryMode.h"

namespace System {

DriverLibrary DriverLibrary::load(const char* name) {
    DriverLibrary library(::dlopen(name, driverLibraryMode()));
    // The loader explains itself in a text and leaves no error number behind.
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
