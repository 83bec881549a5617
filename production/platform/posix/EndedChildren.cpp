#include "platform/posix/EndedChildren.h"

#include <sys/wait.h>

#include <cerrno>

namespace System {

void collectEndedChildren() {
    while (::waitpid(-1, nullptr, WNOHANG) > 0) {
    }
}

int statusAtEndOf(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) == -1) {
        if (errno != EINTR)
            return -1;
    }
    return status;
}

} // namespace System
