#pragma once

#include <string>
#include <string_view>

#include "platform/Descriptor.h"

namespace station {

/// A terminal as a shell sets it up, and the person at it. One thread at a time. Every wait gives up
/// with a test failure after a while.
class Keyboard {
public:
    Keyboard();

    /// For the program that the person uses.
    int terminal() const { return m_terminal.get(); }

    void type(std::string_view keys) const;

    /// Returns when that much has been shown since the last call, and what that is.
    std::string seeUntil(std::string_view ending);

    /// Whether the terminal edits lines and echoes keys, as it does for a shell.
    bool isCooked() const;
    void waitUntilRaw() const;

    /// The person closes the window. Nothing but the destructor after that.
    void close() { m_person.reset(); }

private:
    System::Descriptor m_person;
    System::Descriptor m_terminal;
};

} // namespace station
