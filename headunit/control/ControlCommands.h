#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "devices/SerialLines.h"

namespace headunit {

/// What a user may ask of a running unit: one line of words in, one answer out. For the event loop's
/// thread; nothing here blocks. The lines outlive it.
class ControlCommands {
public:
    struct Answer {
        bool done = true;
        std::string text; ///< without its last line end; why not, when it was not done
    };

    explicit ControlCommands(SerialLines& lines) : m_lines(lines) {}

    /// Runs one line of words that blanks separate.
    Answer run(std::string_view line);

private:
    using Words = std::vector<std::string>;
    struct Command;
    struct ModemKey;

    Answer unplug(const Words& words);
    Answer plug(const Words& words);
    Answer state(const Words& words);
    Answer position(const Words& words);
    Answer modem(const Words& words);
    Answer loopback(const Words& words);
    Answer receiver(const Words& words);
    Answer setSignal(const std::string& value);
    Answer setRegistration(const std::string& value);
    Answer setCard(const std::string& value);
    Answer setLate(const std::string& value);
    Answer setSilent(const std::string& value);

    static const Command kCommands[];
    static const ModemKey kModemKeys[];

    SerialLines& m_lines;
};

} // namespace headunit
