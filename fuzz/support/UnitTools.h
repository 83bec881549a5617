#pragma once

/// What a unit runs for a command, and what the daemon says on standard error: the seam's calls come
/// here in place of the system, so that no process is started.
///
/// A shell that is given a text prints the text, and ends as it says: "exit N" with that status, "signal
/// N" by that signal, "sleep" not in time, "stay" not even when it is killed, "shut" before it has read
/// it, "lost" unseen.
namespace UnitTools {

/// What is not as it should be; may be joined.
enum Fault : unsigned {
    NoProcesses = 0x20, ///< none can be started
    ToolsFail = 0x40,   ///< the displays' hang, the audio driver does not run
};

/// Without faults but these.
void renew(unsigned faults);

} // namespace UnitTools
