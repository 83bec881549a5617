#include "wire/Descriptor.h"

#include <unistd.h>

#include <cerrno>

namespace System {

int Descriptor::close() {
    if (m_descriptor < 0)
        return 0;
    const int savedErrno = errno;
    // Never repeated after EINTR: the descriptor is gone by then and its number may be in use again.
    const int error = ::close(release()) == 0 ? 0 : errno;
    errno = savedErrno;
    return error;
}

void Descriptor::reset(int descriptor) {
    close();
    m_descriptor = descriptor;
}

} // namespace System
