#pragma once

#include <cstdint>

#include "devices/I2cSlave.h"

namespace headunit {

/// Eight pins with weak pull-ups. Each byte written sets the outputs, each byte read gives the levels of
/// the pins: a pin is low when its output or what is connected to it pulls it down. All outputs are high
/// at first and nothing pulls. Not synchronised.
class PortExpander : public I2cSlave {
public:
    void write(std::string_view bytes) override;
    std::string read(std::size_t count) override;
    std::string description() const override;

    std::uint8_t outputs() const { return m_outputs; }
    std::uint8_t pins() const { return m_outputs & m_outside; }

    /// A bit for each pin, 0 when what is connected to it pulls it down.
    void setOutside(std::uint8_t levels) { m_outside = levels; }

private:
    std::uint8_t m_outputs = 0xFF;
    std::uint8_t m_outside = 0xFF;
};

} // namespace headunit
