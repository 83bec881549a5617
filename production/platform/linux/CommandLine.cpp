#include "platform/CommandLine.h"

#include <cerrno>
#include <string>

#include "platform/linux/ShellStart.h"
#include "platform/posix/EndedChildren.h"

namespace System {

int runCommandLine(const char* commandLine) {
    char name[] = "sh";
    char takeArgument[] = "-c";
    std::string text = commandLine;
    char* const arguments[] = {name, takeArgument, text.data(), nullptr};
    pid_t pid = -1;
    if (const int error = startShell({arguments}, pid); error != 0) {
        errno = error;
        return -1;
    }
    return statusAtEndOf(pid);
}

} // namespace System
