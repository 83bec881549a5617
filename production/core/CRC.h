#pragma once

#include <cstdint>

namespace System {

/// The checksum with which a station verifies what it has moved: CRC-32's polynomial 0x04C11DB7, most
/// significant bit first, in the augmented form without the augmentation. The first four bytes,
/// inverted, are the register's start, no zero bytes follow the data, and the result is inverted. So it
/// differs from the usual CRC-32 variants, and needs four bytes at least.
class CRC {
public:
    static constexpr unsigned int kTooShort = 1024;
    static constexpr unsigned int kNoMemory = 1026;

    /// Stores the checksum of `length` bytes in `*crc` and returns 0, or returns one of the numbers
    /// above. One thread at a time.
    static unsigned int calc(const unsigned char* data, unsigned int length, unsigned int* crc);

private:
    static bool buildTable();

    /// The tables of CRCDivision, from the first use on.
    static std::uint32_t* crcTab;
};

} // namespace System
