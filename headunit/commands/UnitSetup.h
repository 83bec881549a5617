#pragma once

#include <optional>
#include <string>

#include "unit/ChildProcess.h"
#include "unit/SandboxArguments.h"
#include "unit/UnitFolder.h"

namespace headunit {

/// The given folder, which is kept, or a temporary one when `given` is empty. Throws UnitError.
UnitFolder openUnitFolder(const std::string& given);

/// Throws UnitError that says what to do when there is no executable program at `path`.
void requireDaemon(const std::string& path);

/// What the daemon's environment has of its own: its choice of a serial protocol, when one is given.
Environment daemonEnvironment(const std::optional<std::string>& supplier);

/// Appends the option of 'inside' that says the same, with a colon before the value.
void passOn(const std::optional<std::string>& supplier, std::vector<std::string>& launcher);

/// Lets the unit see the folder of the program at this absolute path.
void shareFolderOf(const std::string& program, SandboxLayout& layout);

} // namespace headunit
