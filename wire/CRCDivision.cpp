#include "wire/CRCDivision.h"

#ifdef PRODUCTION_ISAL
#include <isa-l/crc.h>
#endif

namespace System::CRCDivision {
namespace {

constexpr std::uint32_t kPolynomial = 0x04C11DB7;
constexpr std::uint32_t kTopBit = 0x80000000;
// Of the bytes that are divided in one step.
constexpr std::size_t kHalf = kTables / 2;
// Bytes that are asked for so far ahead have come from memory when it is their turn. By itself a
// processor looks ahead to the end of a page only, and waits at the beginning of the next.
constexpr std::size_t kAhead = 1024;

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

#ifdef PRODUCTION_ISAL

std::uint32_t divideByLibrary(std::uint32_t crc, const unsigned char* data, std::size_t length) {
    // The library inverts its register at both ends. It is not asked for nothing.
    return length == 0 ? crc : ~::crc32_ieee(~crc, data, std::uint64_t{length});
}

#endif

} // namespace

void fillTables(std::uint32_t* tables) {
    for (std::uint32_t byte = 0; byte < kTableEntries; ++byte)
        tables[byte] = dividedByte(byte);
    for (std::size_t at = kTableEntries; at < kTables * kTableEntries; ++at) {
        const std::uint32_t before = tables[at - kTableEntries];
        tables[at] = before << 8 ^ tables[before >> 24];
    }
}

// What each of eight bytes contributes is looked up
// apart, so that no look-up waits for the one before it.
std::uint32_t divide(const std::uint32_t* tables, std::uint32_t crc, const unsigned char* data,
                     std::size_t length) {
    const auto slice = [tables](std::size_t number, std::uint32_t byte) {
        return tables[number * kTableEntries + (byte & 0xFF)];
    };
    const auto upperHalf = [slice](std::uint32_t word) {
        return slice(7, word >> 24) ^ slice(6, word >> 16) ^ slice(5, word >> 8) ^ slice(4, word);
    };
    const auto lowerHalf = [slice](std::uint32_t word) {
        return slice(3, word >> 24) ^ slice(2, word >> 16) ^ slice(1, word >> 8) ^ slice(0, word);
    };
    if (length >= kTables) {
        // The half that does not depend on the register is looked up one step ahead: the register then
        // waits for the other half only.
        std::uint32_t lower = lowerHalf(bigEndianAt(data + kHalf));
        for (; length >= 2 * kTables; length -= kTables, data += kTables) {
            if (length > kAhead)
                __builtin_prefetch(data + kAhead);
            const std::uint32_t next = lowerHalf(bigEndianAt(data + kTables + kHalf));
            crc = upperHalf(crc ^ bigEndianAt(data)) ^ lower;
            lower = next;
        }
        crc = upperHalf(crc ^ bigEndianAt(data)) ^ lower;
        length -= kTables;
        data += kTables;
    }
    for (; length > 0; --length, ++data)
        crc = crc << 8 ^ slice(0, crc >> 24 ^ *data);
    return crc;
}

std::uint32_t finish(std::uint32_t crc, const unsigned char* last) {
    return ~crc ^ bigEndianAt(last);
}

#ifdef PRODUCTION_ISAL
std::uint32_t (*const libraryDivide)(std::uint32_t, const unsigned char*, std::size_t) = divideByLibrary;
#else
std::uint32_t (*const libraryDivide)(std::uint32_t, const unsigned char*, std::size_t) = nullptr;
#endif

} // namespace System::CRCDivision
