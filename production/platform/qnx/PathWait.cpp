#include "platform/PathWait.h"

#include <libgen.h>

namespace System {

PathWait::PathWait() = default;

// Looks once more when the time is over: asking is dear here, and the paths belong to hardware that
// people plug in.
bool PathWait::waitFor(const char* path, std::chrono::milliseconds longest) {
    const int milliseconds = static_cast<int>(longest.count());
    return ::waitfor(path, milliseconds, milliseconds) == 0;
}

} // namespace System
