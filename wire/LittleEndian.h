#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// Numbers least significant byte first, as a chip's own messages, the packets of a device's manager and
// picture files carry them. There have to be as many bytes as the number has.

inline std::uint16_t littleEndian16(const unsigned char* bytes) {
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

inline std::uint32_t littleEndian32(const unsigned char* bytes) {
    return littleEndian16(bytes) | static_cast<std::uint32_t>(littleEndian16(bytes + 2)) << 16;
}

inline std::uint16_t littleEndian16(std::string_view bytes, std::size_t at) {
    return littleEndian16(reinterpret_cast<const unsigned char*>(bytes.data()) + at);
}

inline std::uint32_t littleEndian32(std::string_view bytes, std::size_t at) {
    return littleEndian32(reinterpret_cast<const unsigned char*>(bytes.data()) + at);
}

inline void putLittleEndian16(unsigned char* bytes, std::uint16_t value) {
    bytes[0] = static_cast<unsigned char>(value);
    bytes[1] = static_cast<unsigned char>(value >> 8);
}

inline void putLittleEndian32(unsigned char* bytes, std::uint32_t value) {
    putLittleEndian16(bytes, static_cast<std::uint16_t>(value));
    putLittleEndian16(bytes + 2, static_cast<std::uint16_t>(value >> 16));
}

/// For any sequence of characters or bytes that has `push_back`.
template <typename Bytes>
void appendLittleEndian16(Bytes& bytes, std::uint16_t value) {
    bytes.push_back(static_cast<typename Bytes::value_type>(value));
    bytes.push_back(static_cast<typename Bytes::value_type>(value >> 8));
}

template <typename Bytes>
void appendLittleEndian32(Bytes& bytes, std::uint32_t value) {
    appendLittleEndian16(bytes, static_cast<std::uint16_t>(value));
    appendLittleEndian16(bytes, static_cast<std::uint16_t>(value >> 16));
}
