#include "platform/posix/EndedChildren.h"

#include <sys/wait.h>

namespace System {

void collectEndedChildren() {
    while (::waitpid(-1, nullptr, WNOHANG) > 0) {
    }
}

} // namespace System
