#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// Numbers as they travel on the wire: most significant byte first. Positions are checked by the caller.

inline std::uint16_t bigEndian16(const std::vector<unsigned char>& frame, std::size_t at) {
    return static_cast<std::uint16_t>(frame[at] << 8 | frame[at + 1]);
}

inline std::uint32_t bigEndian32(const std::vector<unsigned char>& frame, std::size_t at) {
    return static_cast<std::uint32_t>(bigEndian16(frame, at)) << 16 | bigEndian16(frame, at + 2);
}

inline void putBigEndian16(std::vector<unsigned char>& frame, std::size_t at, std::uint16_t value) {
    frame[at] = static_cast<unsigned char>(value >> 8);
    frame[at + 1] = static_cast<unsigned char>(value);
}

inline void putBigEndian32(std::vector<unsigned char>& frame, std::size_t at, std::uint32_t value) {
    putBigEndian16(frame, at, static_cast<std::uint16_t>(value >> 16));
    putBigEndian16(frame, at + 2, static_cast<std::uint16_t>(value));
}
