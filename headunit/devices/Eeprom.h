#pragma once

#include <array>
#include <cstdint>

#include "devices/I2cSlave.h"

namespace headunit {

/// 256 bytes of memory with an address pointer. The first byte written is where the next byte goes or
/// comes from; the pointer counts on and wraps. Fresh memory holds 0xFF. Not synchronised.
class Eeprom : public I2cSlave {
public:
    static constexpr std::size_t kSize = 256;

    Eeprom();

    void write(std::string_view bytes) override;
    std::string read(std::size_t count) override;
    std::string description() const override;

    std::uint8_t pointer() const { return m_pointer; }

    /// All of it, from address 0.
    std::string content() const { return {m_bytes.begin(), m_bytes.end()}; }

    /// Replaces bytes and leaves the pointer. False, and no effect, when they reach beyond the end.
    bool store(std::size_t address, std::string_view bytes);

private:
    std::array<char, kSize> m_bytes;
    std::uint8_t m_pointer = 0;
};

} // namespace headunit
