#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/Program.h"

namespace station {

/// One run of the program as a process of its own, with no STATION_ variables but the given ones.
struct Invocation {
    std::vector<std::string> arguments;
    std::map<std::string, std::string> environment = {};
    int standardOutput = -1;          ///< a descriptor to use instead of collecting the output
    int standardInput = STDIN_FILENO; ///< the test's own unless told otherwise
    /// Called when the process runs.
    std::function<void(pid_t process)> onStart = [](pid_t) {};
};

/// Waits for the program to end; kills it, with a test failure, when that takes far too long. The exit
/// code of one that a signal killed is minus that signal.
Outcome runStation(const Invocation& invocation);

/// The same, with the option for the target ahead of the arguments.
Outcome runStationAt(const std::string& target, std::vector<std::string> arguments);

} // namespace station
