#pragma once

#include <string>
#include <vector>

#include "core/AbstractCmd.h"

/// What the port commands share: the table of the unit's general-purpose lines. Each line is a node of
/// the port driver whose one character, '0' or '1', is its level.
class AbstractPCmd : public AbstractCmd {
public:
    struct PortInfo {
        enum Type : unsigned {
            None = 0,  ///< not implemented
            Input = 1, ///< readable only
            Output = 3 ///< readable and writable
        };

        std::string name; ///< of the node; empty when the port is not implemented on this unit
        Type type = None;
    };

    AbstractPCmd(char id, std::string name);
    ~AbstractPCmd() override = default;

protected:
    static constexpr unsigned int kOutOfRange = 0x27000010;
    static constexpr unsigned int kNotAnOutput = 0x27000040;
    static constexpr unsigned int kAccessFailed = 0x27000000;
    static constexpr unsigned int kWriteFailed = 0x27010000;
    static constexpr unsigned int kNotAvailable = 0x40000001;

    /// The ports by their numbers on the wire.
    const std::vector<PortInfo>& ports() const { return m_ports; }

    std::string nodeOf(unsigned char port) const;

    /// Null when there is such a port.
    Answer checkRange(unsigned char port) const;
    /// Null when the port can be written to.
    Answer checkOutput(unsigned char port) const;

    /// Opens the port and writes '0' or '1' to it; any other level is refused once the port is open.
    Answer writeLevel(unsigned char port, char level) const;

private:
    std::vector<PortInfo> m_ports;
};
