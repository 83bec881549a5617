#include "core/CRC.h"

#include <cstddef>
#include <new>

namespace System {
namespace {

constexpr std::uint32_t kPolynomial = 0x04C11DB7;
constexpr std::uint32_t kTopBit = 0x80000000;
constexpr std::size_t kEntries = 256;
constexpr std::size_t kSlices = 8;
constexpr unsigned int kRegisterBytes = 4;

std::uint32_t bigEndianAt(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
           static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
}

std::uint32_t dividedByte(std::uint32_t byte) {
    std::uint32_t value = byte << 24;
    for (int bit = 0; bit < 8; ++bit)
        value = (value & kTopBit) != 0 ? value << 1 ^ kPolynomial : value << 1;
    return value;
}

/// The register after further bytes, eight at a time: what each of them contributes is looked up apart,
/// so that no look-up waits for the one before it.
std::uint32_t divide(const std::uint32_t* table, std::uint32_t crc, const unsigned char* data,
                     std::size_t length) {
    const auto slice = [table](std::size_t number, std::uint32_t byte) {
        return table[number * kEntries + (byte & 0xFF)];
    };
    for (; length >= kSlices; length -= kSlices, data += kSlices) {
        const std::uint32_t high = crc ^ bigEndianAt(data);
        const std::uint32_t low = bigEndianAt(data + 4);
        crc = slice(7, high >> 24) ^ slice(6, high >> 16) ^ slice(5, high >> 8) ^ slice(4, high) ^
              slice(3, low >> 24) ^ slice(2, low >> 16) ^ slice(1, low >> 8) ^ slice(0, low);
    }
    for (; length > 0; --length, ++data)
        crc = crc << 8 ^ slice(0, crc >> 24 ^ *data);
    return crc;
}

} // namespace

std::uint32_t* CRC::crcTab = nullptr;

bool CRC::buildTable() {
    if (crcTab != nullptr)
        return true;
    auto* table = new (std::nothrow) std::uint32_t[kSlices * kEntries];
    if (table == nullptr)
        return false;
    for (std::uint32_t byte = 0; byte < kEntries; ++byte)
        table[byte] = dividedByte(byte);
    for (std::size_t at = kEntries; at < kSlices * kEntries; ++at) {
        const std::uint32_t before = table[at - kEntries];
        table[at] = before << 8 ^ table[before >> 24];
    }
    crcTab = table;
    return true;
}

unsigned int CRC::calc(const unsigned char* data, unsigned int length, unsigned int* crc) {
    if (length < kRegisterBytes)
        return kTooShort;
    if (!buildTable())
        return kNoMemory;
    // Shifting the last four bytes in without dividing them is the same as adding them at the end.
    const std::size_t divided = length - kRegisterBytes;
    *crc = ~divide(crcTab, ~std::uint32_t{0}, data, divided) ^ bigEndianAt(data + divided);
    return 0;
}

} // namespace System
