#pragma once

#include <string>

#include "unit/SandboxArguments.h"
#include "unit/UnitFolder.h"

namespace headunit {

/// The given folder, which is kept, or a temporary one when `given` is empty. Throws UnitError.
UnitFolder openUnitFolder(const std::string& given);

/// Throws UnitError that says what to do when there is no executable program at `path`.
void requireDaemon(const std::string& path);

/// Lets the unit see the folder of the program at this absolute path.
void shareFolderOf(const std::string& program, SandboxLayout& layout);

} // namespace headunit
