#include "terminal/Pump.h"

#include <exception>

namespace station {

void Pump::run() {
    m_channel.open();
    try {
        m_console.begin();
        pass();
    } catch (...) {
        m_console.end();
        closeAsFarAsPossible();
        throw;
    }
    m_console.end();
    m_channel.close();
}

void Pump::pass() {
    bool isEnded = false;
    for (int quiet = 0; !isEnded || quiet < kQuietFetches;) {
        stopIfInterrupted(m_interruption);
        Console::Input input = m_console.read(quiet == 0 ? Seconds(0) : kPause, m_channel.mostSent());
        isEnded = input.isEnded;
        const std::size_t escape =
            m_console.isTerminal() ? input.bytes.find(kEscape) : std::string::npos;
        if (escape != std::string::npos)
            input.bytes.resize(escape);
        if (!input.bytes.empty()) {
            m_channel.send(input.bytes);
            quiet = 0;
        }
        if (escape != std::string::npos)
            return;
        quiet = fetch() ? 0 : quiet + 1;
    }
}

/// Shows what has come; false when that is nothing. A line that says much is heard before it is given
/// more, or what it has to say fills the unit's buffers until it takes nothing any longer.
bool Pump::fetch() {
    bool hasCome = false;
    for (int fetches = 0; fetches < kMostFetches; ++fetches) {
        stopIfInterrupted(m_interruption);
        const std::string bytes = m_channel.fetch();
        m_console.write(bytes);
        hasCome = hasCome || !bytes.empty();
        if (bytes.size() < Channel::kMostFetched)
            break;
    }
    return hasCome;
}

void Pump::closeAsFarAsPossible() {
    try {
        m_channel.close();
    } catch (const std::exception&) {
        // What ended the pipe is told, and not what follows from it.
    }
}

} // namespace station
