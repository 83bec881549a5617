#pragma once

#include <termios.h>

#include <string>

#include "session/Interruption.h"
#include "terminal/Console.h"

namespace station {

/// A console made of two descriptors, such as standard input and output, which it does not own. When the
/// input is a terminal, it is raw between `begin()` and `end()`: every key is a byte, signals included,
/// and nothing is echoed. Its settings are put back by `end()` or the destructor.
class StandardConsole : public Console {
public:
    StandardConsole(int input, int output, const Interruption& interruption);
    ~StandardConsole() override { StandardConsole::end(); }
    StandardConsole(const StandardConsole&) = delete;
    StandardConsole& operator=(const StandardConsole&) = delete;

    bool isTerminal() const override { return m_isTerminal; }

    /// Says on standard error how it is ended, to whoever is at a terminal. Throws std::system_error.
    void begin() override;
    void end() override;

    Input read(Seconds wait, std::size_t most) override;
    void write(std::string_view bytes) override;

    /// A line on standard error, which looks like one whatever the terminal makes of line ends.
    void tell(const std::string& line) const;

private:
    int m_input;
    int m_output;
    const Interruption& m_interruption;
    bool m_isTerminal;
    bool m_isRaw = false;
    bool m_hasEnded = false;
    termios m_attributes = {}; ///< as they were
};

} // namespace station
