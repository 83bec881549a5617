#pragma once

namespace station {

/// What the program tells its caller. Part of its interface: scripts compare the numbers.
enum class ExitCode {
    Success = 0,
    Unexpected = 1, ///< the machine itself failed, for example standard output is full
    Usage = 2,
    CannotConnect = 3,
    TimedOut = 4,
    Refused = 5,
    MalformedAnswer = 6, ///< includes a connection that ended too early
};

} // namespace station
