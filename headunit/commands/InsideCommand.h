#pragma once

#include <string>
#include <vector>

namespace headunit {

struct InsideOptions {
    int standardError = -1;  ///< the outer standard error, inherited through bwrap
    std::string audioDriver; ///< started before everything else when not empty
    std::string daemonPath;  ///< started before the command when not empty
    std::string supplier;    ///< of the daemon, else of the command: a colon and the value, or empty
    std::vector<std::string> command;
};

/// The launcher that runs inside the unit. Without a daemon it becomes the command; with one it starts
/// the daemon, waits until it listens, runs the command and returns its exit status. Throws UnitError
/// when the audio driver or the daemon does not come up or nothing can be executed.
int insideCommand(const InsideOptions& options);

} // namespace headunit
