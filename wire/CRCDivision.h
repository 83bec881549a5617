#pragma once

#include <cstddef>
#include <cstdint>

namespace System {

/// The ways to come to the checksum of CRC::calc, for that function and for the tests and benchmarks
/// that compare them. Any thread; nothing is allocated.
namespace CRCDivision {

constexpr std::size_t kTableEntries = 256;
constexpr std::size_t kTables = 8;

/// Fills eight tables of 256 entries: the first is the polynomial's own, number k+1 is number k shifted
/// by a byte.
void fillTables(std::uint32_t* tables);

/// The register of a division after further bytes, eight at a time with the eight tables; it is all ones
/// before the first.
std::uint32_t divide(const std::uint32_t* tables, std::uint32_t crc, const unsigned char* data,
                     std::size_t length);

/// The same by the processor's own multiplication of polynomials, through ISA-L. Null in a program that
/// was built without that library.
extern std::uint32_t (*const libraryDivide)(std::uint32_t crc, const unsigned char* data,
                                            std::size_t length);

/// So many bytes at the end are shifted in without being divided, which is the same as adding them.
constexpr std::size_t kUndivided = 4;

/// The checksum, when the register has taken in all bytes but the last `kUndivided`.
std::uint32_t finish(std::uint32_t crc, const unsigned char* last);

/// The checksum of at least `kUndivided` bytes, of which the others are divided by
/// `divide(register, data, length)`.
template <typename Divide>
std::uint32_t checksum(const Divide& divide, const unsigned char* data, std::size_t length) {
    const std::size_t divided = length - kUndivided;
    return finish(divide(~std::uint32_t{0}, data, divided), data + divided);
}

/// The same by the tables.
inline std::uint32_t portable(const std::uint32_t* tables, const unsigned char* data,
                              std::size_t length) {
    return checksum([tables](std::uint32_t crc, const unsigned char* bytes,
                             std::size_t count) { return divide(tables, crc, bytes, count); },
                    data, length);
}

} // namespace CRCDivision
} // namespace System
