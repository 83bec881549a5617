#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace headunit {

/// What the kernel's line about a process (/proc/PID/stat) says of it.
struct ProcessLine {
    std::string name; ///< the first 15 characters of its program's name
    bool ended = false;
};

/// Nothing when the text is no such line.
std::optional<ProcessLine> parseProcessLine(std::string_view line);

/// The processes with this name that run in this process's unit (or machine, outside of one), without
/// this process itself. Names are compared in the length that the kernel keeps.
std::vector<pid_t> processesNamed(std::string_view name);

/// The number of a signal: "SIGUSR1", "USR1" or "10". Nothing when there is no such signal.
std::optional<int> signalNumber(std::string_view text);

} // namespace headunit
