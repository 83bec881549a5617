#pragma once

#include <sys/types.h>

#include <functional>
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

    /// Those that have become the sleeping command. A shell's copy on its way there carries the mark
    /// too, but has no command line at all for a moment.
    std::vector<pid_t> sleeping() const;

private:
    static std::vector<pid_t> having(
        const std::function<bool(const std::string& commandLine)>& property);

    std::string m_mark;
};
