#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

constexpr std::uint32_t kScratchSize = 0x8000000;

/// The unit's checksum over some bytes, at least four,
/// calculated one byte after the other; in four bytes.
std::string checksumOf(std::string_view bytes);

/// The part of the scratch buffer that one station has to itself, and what must be in it. Addresses are
/// the buffer's.
class Window {
public:
    static constexpr std::uint32_t kSize = 64 * 1024;

    explicit Window(std::uint32_t begin) : m_begin(begin), m_content(kSize, '\0') {}

    std::uint32_t begin() const { return m_begin; }

    std::string read(std::uint32_t address, std::size_t count) const {
        return m_content.substr(address - m_begin, count);
    }

    void write(std::uint32_t address, std::string_view bytes) {
        m_content.replace(address - m_begin, bytes.size(), bytes);
    }

private:
    std::uint32_t m_begin;
    std::string m_content;
};
