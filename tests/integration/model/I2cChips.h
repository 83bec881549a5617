#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

/// The chips on the unit's bus, as they are when `reset` orders have been carried out.
class I2cChips {
public:
    static constexpr std::uint32_t kEeprom = 0x50;
    static constexpr std::uint32_t kSensor = 0x48;
    static constexpr std::uint32_t kExpander = 0x20;

    I2cChips();

    /// False when nobody has the address.
    bool write(std::uint32_t address, const std::string& bytes);
    std::optional<std::string> read(std::uint32_t address, std::size_t count);

private:
    void writeEeprom(const std::string& bytes);
    void writeSensor(const std::string& bytes);

    std::string m_memory;
    std::uint8_t m_memoryPointer = 0;
    std::array<std::string, 4> m_registers;
    std::size_t m_register = 0;
    char m_pins = '\xFF';
};
