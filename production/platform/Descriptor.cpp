#include "platform/Descriptor.h"

#include <unistd.h>

#include <cerrno>

namespace System {

void Descriptor::reset(int descriptor) {
    if (m_descriptor >= 0) {
        const int savedErrno = errno;
        // Never repeated after EINTR: the descriptor is gone by then and its number may be in use again.
        ::close(m_descriptor);
        errno = savedErrno;
    }
    m_descriptor = descriptor;
}

} // namespace System
