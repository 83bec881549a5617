#include <fcntl.h>
#include <unistd.h>

#include "platform/Descriptors.h"

namespace System {

void openStandardStreams() {
    Descriptor null(::open("/dev/null", O_RDWR));
    while (null && null.get() <= STDERR_FILENO) {
        null.release();
        null.reset(::open("/dev/null", O_RDWR));
    }
}

} // namespace System
