#include "model/SparseBytes.h"

#include <algorithm>
#include <array>

#include "model/Notation.h"

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

std::string SparseBytes::read(std::uint64_t address, std::size_t count) const {
    std::string bytes(count, '\0');
    const auto first = m_pages.lower_bound(address / kPage);
    for (auto page = first; page != m_pages.end() && page->first * kPage < address + count; ++page) {
        const std::uint64_t begin = std::max(page->first * kPage, address);
        const std::uint64_t end = std::min((page->first + 1) * kPage, address + count);
        bytes.replace(begin - address, end - begin, page->second, begin % kPage, end - begin);
    }
    return bytes;
}

void SparseBytes::write(std::uint64_t address, std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t offset = address % kPage;
        const std::size_t count = std::min(bytes.size(), kPage - offset);
        m_pages.try_emplace(address / kPage, kPage, '\0')
            .first->second.replace(offset, count, bytes.substr(0, count));
        address += count;
        bytes.remove_prefix(count);
    }
}

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
