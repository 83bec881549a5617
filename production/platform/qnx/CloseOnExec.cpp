#include "platform/qnx/CloseOnExec.h"

#include <fcntl.h>

namespace System {

Descriptor closeOnExec(int descriptor) {
    Descriptor opened(descriptor);
    if (opened && ::fcntl(descriptor, F_SETFD, FD_CLOEXEC) == -1)
        opened.reset();
    return opened;
}

} // namespace System
