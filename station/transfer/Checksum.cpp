#include "transfer/Checksum.h"

#include <algorithm>
#include <array>

namespace station {

namespace {

constexpr std::uint32_t kPolynomial = 0x04C11DB7;
constexpr std::uint32_t kTopBit = 0x80000000;
constexpr std::size_t kEntries = 256;
constexpr std::size_t kStep = 4; // bytes that are taken at a time
constexpr int kByteBits = 8;
constexpr int kTopByte = 24;

using Table = std::array<std::uint32_t, kEntries>;

/// Number k is what is left of a byte with 4 + k bytes after it: none of the look-ups of a step waits
/// for another.
using Tables = std::array<Table, kStep>;

constexpr std::uint32_t remainderOf(std::uint32_t byte) {
    std::uint32_t value = byte << kTopByte;
    for (int bit = 0; bit < kByteBits; ++bit)
        value = (value & kTopBit) != 0 ? value << 1 ^ kPolynomial : value << 1;
    return value;
}

constexpr Tables makeTables() {
    Tables tables{};
    for (std::uint32_t byte = 0; byte < kEntries; ++byte) {
        tables[0][byte] = remainderOf(byte);
        for (std::size_t number = 1; number < kStep; ++number) {
            const std::uint32_t before = tables[number - 1][byte];
            tables[number][byte] = before << kByteBits ^ remainderOf(before >> kTopByte);
        }
    }
    return tables;
}

constexpr Tables kTables = makeTables();

std::uint32_t shiftedByStep(std::uint32_t value, const char* bytes) {
    const auto byte = [&](std::size_t at) {
        return std::uint32_t{static_cast<unsigned char>(bytes[at])};
    };
    const std::uint32_t next = byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3);
    return kTables[3][value >> 24] ^ kTables[2][value >> 16 & 0xFF] ^ kTables[1][value >> 8 & 0xFF] ^
           kTables[0][value & 0xFF] ^ next;
}

std::uint32_t shiftedIn(std::uint32_t value, char byte) {
    return value << 8 | static_cast<unsigned char>(byte);
}

} // namespace

void Checksum::add(std::string_view bytes) {
    const std::uint64_t missing = kFewestBytes - std::min(m_count, kFewestBytes);
    const std::string_view opening = bytes.substr(0, missing);
    for (const char byte : opening)
        m_register = shiftedIn(m_register, byte);
    if (missing > 0 && opening.size() == missing)
        m_register = ~m_register;
    m_count += bytes.size();
    std::uint32_t value = m_register;
    std::string_view rest = bytes.substr(opening.size());
    for (; rest.size() >= kStep; rest.remove_prefix(kStep))
        value = shiftedByStep(value, rest.data());
    for (const char byte : rest)
        value = kTables[0][value >> kTopByte] ^ shiftedIn(value, byte);
    m_register = value;
}

std::optional<std::uint32_t> Checksum::value() const {
    if (m_count < kFewestBytes)
        return std::nullopt;
    return ~m_register;
}

std::optional<std::uint32_t> checksumOf(std::string_view bytes) {
    Checksum checksum;
    checksum.add(bytes);
    return checksum.value();
}

} // namespace station
