#pragma once

#include <exception>

namespace station {

/// The program's exit code for what ended a transfer or a terminal: one of `ExitCode`, or 128 + N for
/// signal N, which is above all of them.
int endCode(const std::exception& error);

} // namespace station
