#pragma once

#include <cstdint>
#include <string>

namespace station {

// Numbers as they stand in a frame, most significant byte first.

inline std::string oneByte(unsigned number) {
    return std::string(1, static_cast<char>(number));
}

inline std::string twoBytes(std::uint16_t number) {
    return oneByte(number >> 8U) + oneByte(number);
}

inline std::string fourBytes(std::uint32_t number) {
    return twoBytes(static_cast<std::uint16_t>(number >> 16)) +
           twoBytes(static_cast<std::uint16_t>(number));
}

} // namespace station
