#pragma once

#include "client/Deadline.h"
#include "session/Interruption.h"
#include "terminal/Channel.h"
#include "terminal/Console.h"

namespace station {

/// Connects a console with a line of the unit. One thread; all that it is given must outlive it.
class Pump {
public:
    /// Ctrl-], which a person types to end.
    static constexpr char kEscape = '\x1D';

    /// Between two fetches of a line that has nothing to say.
    static constexpr Seconds kPause{0.05};

    /// So many fetches in a row that bring nothing are a quiet line.
    static constexpr int kQuietFetches = 8;

    /// So many in a row that bring as much as they can are enough before something is sent again.
    static constexpr int kMostFetches = 32;

    Pump(Channel& channel, Console& console, const Interruption& interruption)
        : m_channel(channel), m_console(console), m_interruption(interruption) {}

    /// Opens the line, and passes bytes both ways until the input has ended and the line is quiet, or
    /// until the escape key; then closes the line. Blocks until then. Throws what the channel and the
    /// console throw, and `Interrupted`, having ended the console and tried to close the line.
    void run();

private:
    void pass();
    bool fetch();
    void closeAsFarAsPossible();

    Channel& m_channel;
    Console& m_console;
    const Interruption& m_interruption;
};

} // namespace station
