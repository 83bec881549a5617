#include "platform/Memory.h"

#include <limits>

namespace System {

// Memory is committed when it is allocated, so an allocation that cannot be had fails, and nobody needs
// to be warned of it.
std::uint64_t availableMemory() {
    return std::numeric_limits<std::uint64_t>::max();
}

void keepLittleFreedMemory() {}

void returnFreedMemory() {}

} // namespace System
