#pragma once

#include <cstdint>
#include <string>

#include "measuring/ChildProcess.h"
#include "wire/Descriptor.h"

namespace Measuring {

/// How a floor server comes from a request to its answer.
enum class Handling {
    /// The connection's thread answers by itself.
    Direct,
    /// The connection's thread hands the request to the one worker thread, through a queue under a
    /// mutex,
    /// and waits on a condition of its own for the result.
    HandedOver
};

/// The least that a server with the daemon's way of working can do: a process with a thread per
/// connection that reads lines as the daemon does and answers every line with the same bytes. It
/// listens on a port of its own and ends with the object.
class FloorServer {
public:
    FloorServer(Handling handling, const std::string& answer);

    std::uint16_t port() const { return m_port; }

private:
    System::Descriptor m_listener;
    std::uint16_t m_port;
    ChildProcess m_process;
};

} // namespace Measuring
