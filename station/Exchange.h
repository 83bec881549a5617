#pragma once

#include "CommandLine.h"
#include "Report.h"
#include "client/Answer.h"

namespace station {

/// Connects to the unit that the command line names, runs its command in the protocol of that link and
/// tells `report` what comes ahead of the answer. Blocks until the answer or the time-out. Throws
/// `Failure`, for a command line that cannot be followed before anything is opened.
Answer exchange(const CommandLine& line, Report& report);

} // namespace station
