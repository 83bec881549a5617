#pragma once

#include <array>
#include <cstdint>

#include "devices/I2cSlave.h"

namespace headunit {

/// A thermometer with a pointer register: the first byte written chooses the register for what follows.
/// Register 0 is the temperature, two bytes, the upper 12 bits in two's complement, one for 1/16 degree;
/// it cannot be written. Register 1 is the configuration, one byte; 2 and 3 are the limits of the alarm
/// output in the form of the temperature. A read beyond the register's end begins again at its start.
/// Not synchronised.
class TemperatureSensor : public I2cSlave {
public:
    static constexpr double kColdest = -55; ///< degrees Celsius
    static constexpr double kHottest = 125;

    TemperatureSensor();

    void write(std::string_view bytes) override;
    std::string read(std::size_t count) override;
    std::string description() const override;

    /// Degrees Celsius, as far as the register can tell them.
    double temperature() const;

    /// Rounded to 1/16 degree. False, and no effect, outside what the sensor can measure.
    bool setTemperature(double degrees);

private:
    static constexpr std::size_t kRegisters = 4;

    std::array<std::string, kRegisters> m_registers;
    std::size_t m_pointer = 0;
};

} // namespace headunit
