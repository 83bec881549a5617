#pragma once

#include <string>
#include <vector>

#include "unit/SandboxArguments.h"

namespace headunit {

/// The file that this process runs, absolute. Throws UnitError.
std::string ownProgram();

/// What a sandbox takes from this machine: its system folders and configuration files, this process's
/// working directory (writable) and search paths, the folder of this program. The unit's folder is still
/// to be filled in. Throws UnitError when there is no working directory.
SandboxLayout layoutOnThisHost();

} // namespace headunit
