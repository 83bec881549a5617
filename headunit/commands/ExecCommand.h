#pragma once

#include <optional>
#include <string>
#include <vector>

namespace headunit {

/// The exit status of 'exec' and 'inside' when they themselves
/// fail, so that it is not mistaken for the command's.
constexpr int kExecFailed = 125;

struct ExecOptions {
    std::string unitFolder; ///< kept; a temporary one when empty
    bool withDaemon = false;
    std::string daemonPath;
    std::optional<std::string> supplier;  ///< FIRST_TIER_SUPPLIER of the daemon, else as it is here
    std::vector<std::string> wantedMedia; ///< block media that are there from the beginning
    std::string variant;                  ///< of the hardware; empty for what the unit has
    std::vector<std::string> command;
};

/// Runs the command in a unit with a network of its own and blocks until
/// it has ended. Returns its exit status, or 128 plus the signal that made
/// headunit stop. Nothing of the unit is left then. Throws UnitError.
int execCommand(const ExecOptions& options);

} // namespace headunit
