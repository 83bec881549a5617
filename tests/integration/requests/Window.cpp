#include "requests/Window.h"

#include <array>

#include "requests/Notation.h"

namespace {

using Table = std::array<std::uint32_t, 256>;

Table dividedBytes() {
    constexpr std::uint32_t kPolynomial = 0x04C11DB7;
    constexpr std::uint32_t kTopBit = 0x80000000;
    Table table{};
    for (std::uint32_t entry = 0; entry < table.size(); ++entry) {
        std::uint32_t value = entry << 24;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & kTopBit) != 0 ? value << 1 ^ kPolynomial : value << 1;
        table[entry] = value;
    }
    return table;
}

} // namespace

std::string checksumOf(std::string_view bytes) {
    static const Table table = dividedBytes();
    std::uint32_t value = 0;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const auto byte = static_cast<unsigned char>(bytes[at]);
        value = at < 4 ? value << 8 | byte : table[value >> 24] ^ (value << 8 | byte);
        if (at == 3)
            value = ~value;
    }
    return bigEndian32(~value);
}
