#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ExitCode.h"

namespace station {

/// What the program was asked to do, as it was written:
/// target, protocol and time-out are not checked yet.
struct CommandLine {
    std::string target = "tcp:127.0.0.1:15051";
    std::string protocol; ///< empty for the target's own
    std::string timeout = "30";
    bool waitStartup = false;
    bool json = false;
    std::string progress = "auto"; ///< how a transfer is shown
    std::string name;
    std::vector<std::string> arguments;

    /// Reads the options, which end at NAME, and the defaults from the environment. Returns an exit code
    /// when the program is to end right away, having printed the help, the version or a usage error.
    std::optional<ExitCode> parse(int argc, const char* const* argv);
};

} // namespace station
