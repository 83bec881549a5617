#include "model/I2cChips.h"

#include <algorithm>

I2cChips::I2cChips()
    : m_memory(256, '\xFF'),
      m_registers{"\x19" + std::string(1, '\0'), std::string(1, '\0'), "\x4B" + std::string(1, '\0'),
                  "\x50" + std::string(1, '\0')} {}

bool I2cChips::write(std::uint32_t address, const std::string& bytes) {
    if (address != kEeprom && address != kSensor && address != kExpander)
        return false;
    if (bytes.empty())
        return true;
    if (address == kEeprom)
        writeEeprom(bytes);
    else if (address == kSensor)
        writeSensor(bytes);
    else
        m_pins = bytes.back();
    return true;
}

void I2cChips::writeEeprom(const std::string& bytes) {
    m_memoryPointer = static_cast<std::uint8_t>(bytes.front());
    for (std::size_t at = 1; at < bytes.size(); ++at)
        m_memory[m_memoryPointer++] = bytes[at];
}

void I2cChips::writeSensor(const std::string& bytes) {
    m_register = static_cast<unsigned char>(bytes.front()) % m_registers.size();
    // What is measured cannot be written.
    if (m_register == 0)
        return;
    std::string& target = m_registers[m_register];
    const std::size_t count = std::min(bytes.size() - 1, target.size());
    target.replace(0, count, bytes, 1, count);
}

std::optional<std::string> I2cChips::read(std::uint32_t address, std::size_t count) {
    if (address == kExpander)
        return std::string(count, m_pins);
    std::string bytes;
    if (address == kEeprom)
        while (bytes.size() < count)
            bytes += m_memory[m_memoryPointer++];
    else if (address == kSensor)
        while (bytes.size() < count)
            bytes += m_registers[m_register][bytes.size() % m_registers[m_register].size()];
    else
        return std::nullopt;
    return bytes;
}
