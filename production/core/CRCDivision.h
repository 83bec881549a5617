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
/// before the first. The checksum is this over all bytes but the last four, inverted, XOR those four as
/// a big-endian number.
std::uint32_t divide(const std::uint32_t* tables, std::uint32_t crc, const unsigned char* data,
                     std::size_t length);

/// The checksum of at least four bytes, by `divide`.
std::uint32_t portable(const std::uint32_t* tables, const unsigned char* data, std::size_t length);

/// The same two by the processor's own multiplication of polynomials, through ISA-L. Null in a program
/// that was built without that library.
extern std::uint32_t (*const library)(const unsigned char* data, std::size_t length);
extern std::uint32_t (*const libraryDivide)(std::uint32_t crc, const unsigned char* data,
                                            std::size_t length);

} // namespace CRCDivision
} // namespace System
