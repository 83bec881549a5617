#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "support/I2cPackets.h"
#include "wire/LittleEndian.h"

namespace headunit_test {

/// What goes to the wireless chip and comes from it.

inline std::string shorts(std::initializer_list<std::uint16_t> values) {
    return appended(values, appendLittleEndian16);
}

inline std::string hostCommand(std::uint16_t code, std::uint16_t sequence, const std::string& payload,
                               std::uint16_t result = 0) {
    return shorts({code, static_cast<std::uint16_t>(8 + payload.size()), sequence, result}) + payload;
}

/// The three parts of a request with a buffer of 259 bytes, which begins with this host command.
inline std::string wlanParts(const std::string& command) {
    std::string name = "uap0";
    name.resize(16, '\0');
    std::string buffer = numbers({255}) + command;
    buffer.resize(259, '\0');
    return shorts({0x106, 16}) + numbers({0xC01C697B, 48, 0}) + name + numbers({0xC01C697B, 259, 1}) +
           buffer;
}

inline std::string wlanPacket(const std::string& command) {
    return requestPacket(0, wlanParts(command), 303);
}

/// The packet that answers it when the chip says this.
inline std::string wlanAnswer(const std::string& reply) {
    return numbers({0}) + wlanParts("").substr(0, 48) + reply;
}

} // namespace headunit_test
