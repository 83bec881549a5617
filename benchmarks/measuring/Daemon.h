#pragma once

#include <cstdint>
#include <string>

#include "measuring/ChildProcess.h"
#include "measuring/MemoryUse.h"

namespace Measuring {

/// The path of the program of this name that lies beside the one that is running.
std::string programBesideThis(const std::string& name);

/// The daemon's program, beside the one that is running.
std::string daemonBesideThisProgram();

/// A running daemon that listens on its port; it ends with the object.
class Daemon {
public:
    static constexpr std::uint16_t kPort = 15051;

    /// Waits for the port without connecting to it: a first connection would already cost memory.
    /// Throws when another process listens there, and when the daemon does not get that far.
    explicit Daemon(const std::string& program);

    pid_t pid() const { return m_process.pid(); }
    MemoryUse memoryUse() const { return memoryUseOf(pid()); }
    MemoryUse settledMemoryUse() const { return settledMemoryUseOf(pid()); }

private:
    ChildProcess m_process;
};

} // namespace Measuring
