#pragma once

#include <cstdint>
#include <string>

#include "devices/I2cBus.h"
#include "devices/ManagerPackets.h"
#include "wire/LittleEndian.h"

namespace headunit_test {

/// Packets as a client of the I2C manager makes them, and what it makes of the answers.

/// The numbers one after the other, each as `append` makes it bytes.
template <typename Number>
std::string appended(std::initializer_list<Number> values, void (*append)(std::string&, Number)) {
    std::string bytes;
    for (const Number value : values)
        append(bytes, value);
    return bytes;
}

inline std::string numbers(std::initializer_list<std::uint32_t> values) {
    return appended(values, appendLittleEndian32);
}

inline std::string requestPacket(std::uint32_t command, const std::string& sent,
                                 std::uint32_t room = 0) {
    return numbers({command, static_cast<std::uint32_t>(sent.size()), room, 0}) + sent;
}

inline std::string speedPacket(std::uint32_t speed) {
    return requestPacket(0x80040502, numbers({speed}));
}

inline std::string sendPacket(std::uint32_t address, const std::string& data, bool stop = true) {
    const auto length = static_cast<std::uint32_t>(data.size());
    return requestPacket(0x80100505, numbers({address, 2, length, stop}) + data);
}

inline std::string receivePacket(std::uint32_t address, std::uint32_t count, bool stop = true) {
    return requestPacket(0xC0100506, numbers({address, 2, count, stop}), 16 + count);
}

inline std::string combinedPacket(std::uint32_t address, const std::string& data, std::uint32_t count,
                                  bool stop = true) {
    const auto length = static_cast<std::uint32_t>(data.size());
    return requestPacket(0xC0140507, numbers({address, 2, length, count, stop}) + data, 20 + count);
}

} // namespace headunit_test
