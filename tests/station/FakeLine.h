#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include "client/Target.h"
#include "platform/Descriptor.h"

namespace station {

/// A serial line made of a pseudo-terminal: the station opens the terminal at `target()`, and this is
/// what a unit does at the other end. Keeps a descriptor of the terminal of its own, so that the line
/// stays up while no station is there. One thread at a time. Every call gives up with a test failure
/// after a while.
class FakeLine {
public:
    FakeLine();

    const SerialTarget& target() const { return m_target; }

    /// The terminal itself, to look at its attributes.
    int terminal() const { return m_terminal.get(); }

    /// Waits until a station has set the line up, the first one.
    void waitForStation() const;

    void send(std::string_view bytes) const;
    void sendByteByByte(std::string_view bytes) const;

    /// Waits for that many bytes from the station.
    std::string receive(std::size_t count) const;

    /// All that the station has sent and nobody has received yet. The station must have finished.
    std::string receiveRest() const;

    /// Ends the line; no other call but `target()` after that.
    void hangUp();

private:
    System::Descriptor m_master;
    System::Descriptor m_terminal;
    SerialTarget m_target;
};

/// Plays a script at the unit's end of a line, on a thread of its own; the object waits for its end.
class LineScript {
public:
    explicit LineScript(std::function<void()> script);
    ~LineScript() { m_thread.join(); }
    LineScript(const LineScript&) = delete;
    LineScript& operator=(const LineScript&) = delete;

private:
    std::thread m_thread;
};

/// What acknowledges an answer frame.
constexpr std::string_view kAck = "\x02\x06";

/// A frame with its length byte, from what follows that.
std::string unitFrame(std::string_view rest);

/// The debug frame with this text.
std::string debugFrame(std::string_view text);

/// The status frame of a unit built at 2026/11/21 09:03, with board revision 1A.
std::string statusFrame(bool isFirst = false);

/// How the station shows that.
constexpr char kStatusText[] = "\"2026/11/21 09:03\" A024 \"1A\" 4";

} // namespace station
