#include "platform/CommandLine.h"

#include <signal.h>
#include <spawn.h>

#include <string>

#include "platform/posix/EndedChildren.h"

namespace System {

int runCommandLine(const char* commandLine) {
    inheritance differences{};
    differences.flags = SPAWN_SETSIGMASK | SPAWN_SETSIGDEF;
    sigemptyset(&differences.sigmask);
    sigfillset(&differences.sigdefault);
    char name[] = "sh";
    char takeArgument[] = "-c";
    std::string text = commandLine;
    char* const arguments[] = {name, takeArgument, text.data(), nullptr};
    // Without a map it gets the daemon's descriptors, and
    // the daemon's environment without one of its own.
    const pid_t pid = ::spawn("/bin/sh", 0, nullptr, &differences, arguments, nullptr);
    return pid == -1 ? -1 : statusAtEndOf(pid);
}

} // namespace System
