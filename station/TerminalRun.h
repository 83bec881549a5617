#pragma once

#include "CommandLine.h"

namespace station {

/// Connects standard input and output with the line that the command line names, until one of them ends.
/// Returns the program's exit code, which is 128 + N when signal N ended it.
int runTerminal(const CommandLine& line);

} // namespace station
