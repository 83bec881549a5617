#include "platform/posix/DriverLibraryMode.h"

namespace System {

int driverLibraryMode() {
    return 0; // the loader's own ways
}

} // namespace System
