// The linker puts these functions between the code and the system's.
#include "support/RefusedResources.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include "support/PackedPicture.h"

namespace {

std::atomic<bool> s_isMemoryRefused{false};
std::atomic<const char*> s_refusedVariable{nullptr};

} // namespace

extern "C" {

void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return s_isMemoryRefused && count * size == kPictureBytes ? nullptr : __real_calloc(count, size);
}

int __real_setenv(const char* name, const char* value, int overwrite);
int __wrap_setenv(const char* name, const char* value, int overwrite) {
    const char* const refused = s_refusedVariable;
    if (refused == nullptr || std::strcmp(name, refused) != 0)
        return __real_setenv(name, value, overwrite);
    errno = ENOMEM;
    return -1;
}

} // extern "C"

void refusePictureMemory(bool refused) {
    s_isMemoryRefused = refused;
}

void refuseVariable(const char* name) {
    s_refusedVariable = name;
}
