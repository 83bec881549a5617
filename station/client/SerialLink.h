#pragma once

#include <termios.h>

#include "client/Link.h"
#include "client/Target.h"
#include "wire/Descriptor.h"

namespace station {

/// The station's end of a unit's serial line: a terminal at 115200 baud, 8 data bits, no parity, 1 stop
/// bit, that changes no byte and follows no modem line. Owns the terminal, holds the system's exclusive
/// lock on it (advisory: other stations respect it), and gives its attributes back at the end.
class SerialLink : public Link {
public:
    /// Does not wait for anything. Throws `Failure` (`CannotConnect`): the path cannot be opened, is no
    /// terminal, is locked by another station, or does not take the settings.
    static SerialLink open(const SerialTarget& target);

    SerialLink(SerialLink&& other) noexcept = default;
    SerialLink& operator=(SerialLink&& other) = delete;
    SerialLink(const SerialLink&) = delete;
    SerialLink& operator=(const SerialLink&) = delete;

    /// Lets what was sent go out, for a bounded time, and restores the attributes.
    ~SerialLink() override;

    void send(std::string_view bytes, const Deadline& deadline) override;
    std::optional<std::string> receiveBy(const Deadline& moment) override;

private:
    SerialLink(System::Descriptor line, const termios& attributes);

    System::Descriptor m_line;
    termios m_attributes; // as they were found
};

} // namespace station
