#pragma once

#include "runtime/Mutex.h"

namespace System {

/// The only object of a class: `make` makes it at the first call; it is never destroyed, since threads
/// may use it until the process is gone. To be called in one place a class.
template <typename Make>
auto* onlyObject(Mutex& mutex, Make make) {
    const Lock lock(mutex);
    static auto* const object = make();
    return object;
}

} // namespace System
