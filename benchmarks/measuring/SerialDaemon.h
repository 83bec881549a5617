#pragma once

#include <string>
#include <string_view>

#include "measuring/Daemon.h"
#include "measuring/TerminalPair.h"

namespace Measuring {

/// A running daemon and its station's line, which carries
/// binary frames; it has announced itself and was acknowledged.
class SerialDaemon {
public:
    explicit SerialDaemon(const std::string& program);

    TerminalPair& line() { return m_line; }
    pid_t pid() const { return m_daemon.pid(); }

    /// Sends a request and takes one answer, which is acknowledged; it stays valid until the line is
    /// used again.
    std::string_view exchange(std::string_view request);

private:
    std::string_view receiveFrame();

    TerminalPair m_line;
    Daemon m_daemon;
    std::string m_frame;
};

} // namespace Measuring
