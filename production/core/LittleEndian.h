#pragma once

#include <cstdint>

// Numbers as a chip's own messages carry them: least significant byte first. There have to be as many
// bytes as the number has.

inline std::uint16_t littleEndian16(const unsigned char* bytes) {
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

inline void putLittleEndian16(unsigned char* bytes, std::uint16_t value) {
    bytes[0] = static_cast<unsigned char>(value);
    bytes[1] = static_cast<unsigned char>(value >> 8);
}

inline void putLittleEndian32(unsigned char* bytes, std::uint32_t value) {
    putLittleEndian16(bytes, static_cast<std::uint16_t>(value));
    putLittleEndian16(bytes + 2, static_cast<std::uint16_t>(value >> 16));
}
