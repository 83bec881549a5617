#pragma once

namespace System {

/// Runs a command line in a shell and waits for its end, however long that takes: like `system`, but
/// what it runs has default signal handling, whatever the calling process ignores or blocks. Returns the
/// status as `waitpid` gives it, or -1 and `errno` when there is none. No other thread of the process
/// may wait for children.
int runCommandLine(const char* commandLine);

} // namespace System
