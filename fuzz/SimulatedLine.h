#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "Schedule.h"

/// The station's serial line as the daemon finds it, with a schedule for a station and with a clock of
/// its own: while it lives, what waits for the line takes no time, and what is said on standard error is
/// dropped. The linker puts it between the daemon and the system. One at a time.
class SimulatedLine {
public:
    /// The line takes at most `room` bytes at once. `closePort` is called where the schedule wants that,
    /// and `atEnd` whenever a request is waited for and nothing will come any more.
    SimulatedLine(const Schedule& schedule, std::size_t room, std::function<void()> closePort,
                  std::function<void()> atEnd);
    ~SimulatedLine();
    SimulatedLine(const SimulatedLine&) = delete;
    SimulatedLine& operator=(const SimulatedLine&) = delete;

    /// All that was sent over it.
    const std::string& sent() const { return m_sent; }

    // For the system's calls.

    std::uint64_t now() const { return m_reader.now(); }
    /// Which of the events of `poll` happened within so many milliseconds.
    short poll(short events, int limit);
    /// As the system's, but for an end of the line: -1, which is an error.
    long read(char* bytes, std::size_t count);
    std::size_t write(std::string_view bytes);

private:
    Schedule::Reader m_reader;
    std::size_t m_room;
    std::function<void()> m_closePort;
    std::function<void()> m_atEnd;
    std::string m_sent;
};
