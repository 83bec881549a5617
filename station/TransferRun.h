#pragma once

#include "CommandLine.h"

namespace station {

/// Moves the file that the command line names, from the checks to the report. Returns the program's exit
/// code, which is 128 + N when signal N ended it. Blocks until all is done.
int runTransfer(const CommandLine& line);

} // namespace station
