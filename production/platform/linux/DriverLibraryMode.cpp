#include "platform/posix/DriverLibraryMode.h"

#include <dlfcn.h>

namespace System {

int driverLibraryMode() {
    // This loader refuses mode 0. What a library lacks is better found out now than in a later call.
    return RTLD_NOW | RTLD_LOCAL;
}

} // namespace System
