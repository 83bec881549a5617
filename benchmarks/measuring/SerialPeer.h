#pragma once

#include <string>

#include "measuring/ChildProcess.h"

namespace Measuring {

/// The acknowledgement of a frame: its length and the id of the command that it stands for.
constexpr char kAcknowledgement[] = "\x02\x06";

/// The least that a unit on a serial line can do: a process with one thread that reads a frame's length
/// byte, then the rest, answers every frame with the same bytes and waits for the acknowledgement, with
/// `select` before each read. It ends with the object.
class SerialPeer {
public:
    /// Serves the terminal at that path.
    SerialPeer(const std::string& terminal, const std::string& answer);

    pid_t pid() const { return m_process.pid(); }

private:
    ChildProcess m_process;
};

} // namespace Measuring
