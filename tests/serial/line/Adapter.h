#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/Descriptor.h"
#include "support/UnitFiles.h"

/// The adapter that connects the unit to its test station, in the hands of the test: a pseudo-terminal
/// behind the node that the daemon opens, which can be pulled and plugged in again. Raw bytes; each wait
/// has a deadline. One thread at a time. What cannot go on throws std::runtime_error.
class Adapter {
public:
    static constexpr const char* kNode = kStationLine;

    /// Plugged in, in place of the unit's own line. Make it before the daemon.
    Adapter();
    Adapter(const Adapter&) = delete;
    Adapter& operator=(const Adapter&) = delete;
    ~Adapter();

    /// The node goes and whoever has the line open sees it hang up.
    void pull();
    /// A new line appears behind the node.
    void plug();

    void send(std::string_view bytes);

    /// Exactly so many bytes; fewer when the deadline passes.
    std::string receive(std::size_t count);

    /// One line, to its ETX LF.
    std::string receiveLine();

    /// One frame by its length byte.
    std::string receiveFrame();

    /// Whether nothing comes in that time.
    bool isSilentFor(std::chrono::milliseconds time);

    /// Returns when the daemon has taken everything that was sent out of the line.
    void waitUntilTaken();

    /// The unit's end as the tests may look at it: its path, "/dev/pts/N".
    const std::string& terminal() const { return m_terminal; }

private:
    bool waitFor(short events, std::chrono::milliseconds time) const;

    System::Descriptor m_station;
    // Keeps the line alive while the daemon closes its port and opens it again.
    System::Descriptor m_unit;
    std::string m_terminal;
};
