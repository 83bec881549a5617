#pragma once

#include <memory>

#include "CommandLine.h"
#include "Report.h"
#include "client/Answer.h"
#include "session/Interruption.h"
#include "session/Session.h"

namespace station {

/// Connects to the unit that the command line names, runs its command in the protocol of that link and
/// tells `report` what comes ahead of the answer. Blocks until the answer or the time-out. Throws
/// `Failure`, for a command line that cannot be followed before anything is opened.
Answer exchange(const CommandLine& line, Report& report);

/// Connects in the same way for any number of commands, each of which has the time-out for itself. What
/// the unit tells meanwhile goes to `onInfo`. `interruption` must outlive the session.
std::unique_ptr<Session> openSession(const CommandLine& line, const Interruption& interruption,
                                     const Session::InfoSink& onInfo);

} // namespace station
