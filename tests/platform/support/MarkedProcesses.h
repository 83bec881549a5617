#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// Processes that a test recognises by a word on their command line. Ends those that are left over.
class MarkedProcesses {
public:
    MarkedProcesses();
    ~MarkedProcesses();
    MarkedProcesses(const MarkedProcesses&) = delete;
    MarkedProcesses& operator=(const MarkedProcesses&) = delete;

    /// A command that sleeps for longer than any test and carries the mark.
    std::string sleep() const { return "sleep " + m_mark; }

    /// `script` with each "SLEEP" replaced by that command.
    std::string in(std::string script) const;

    /// Those that are alive now.
    std::vector<pid_t> alive() const;

private:
    std::string m_mark;
};
