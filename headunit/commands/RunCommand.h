#pragma once

#include <optional>
#include <string>
#include <vector>

namespace headunit {

struct RunOptions {
    std::string unitFolder; ///< kept; a temporary one when empty
    std::string daemonPath;
    std::optional<std::string> supplier;  ///< FIRST_TIER_SUPPLIER of the daemon, else as it is here
    std::vector<std::string> wantedMedia; ///< block media that are there from the beginning
    std::string variant;                  ///< of the hardware; empty for what the unit has
    bool inPlace = false;
    bool changeThisMachine = false;
};

/// Runs the daemon in a unit on this machine's network, in the foreground, until a stop signal comes
/// (returns 0) or the daemon ends (returns 1). Nothing of the unit is left then, except a kept folder.
/// Throws UnitError when it cannot start.
int runCommand(const RunOptions& options);

} // namespace headunit
