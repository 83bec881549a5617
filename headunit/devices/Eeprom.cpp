#include "devices/Eeprom.h"

#include <algorithm>

namespace headunit {
namespace {

constexpr char kErased = '\xFF';

} // namespace

Eeprom::Eeprom() {
    m_bytes.fill(kErased);
}

void Eeprom::write(std::string_view bytes) {
    if (bytes.empty())
        return;
    m_pointer = static_cast<std::uint8_t>(bytes.front());
    for (const char byte : bytes.substr(1))
        m_bytes[m_pointer++] = byte;
}

std::string Eeprom::read(std::size_t count) {
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = m_bytes[m_pointer++];
    return bytes;
}

std::string Eeprom::description() const {
    return "pointer " + std::to_string(m_pointer);
}

bool Eeprom::store(std::size_t address, std::string_view bytes) {
    if (address > kSize || bytes.size() > kSize - address)
        return false;
    std::copy(bytes.begin(), bytes.end(), m_bytes.data() + address);
    return true;
}

} // namespace headunit
