// Every way to the checksum gives what a division bit by bit gives, wherever in memory the bytes lie and
// however they are divided up.

#include <algorithm>
#include <cstring>
#include <memory>

#include "Expect.h"
#include "Input.h"
#include "core/CRC.h"
#include "wire/CRCDivision.h"

namespace {

namespace Division = System::CRCDivision;

constexpr std::uint32_t kPolynomial = 0x04C11DB7;

std::uint8_t byteAt(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes[at]);
}

/// The first four bytes, inverted, are the register's start; every further bit is shifted in from below,
/// and the polynomial is subtracted when a one falls out above. The result is inverted.
std::uint32_t checksumOf(std::string_view bytes) {
    std::uint32_t crc = 0;
    for (std::size_t at = 0; at < 4; ++at)
        crc = crc << 8 | (byteAt(bytes, at) ^ 0xFFU);
    for (std::size_t at = 4; at < bytes.size(); ++at)
        for (int bit = 7; bit >= 0; --bit) {
            const bool overflows = (crc & 0x80000000) != 0;
            crc = crc << 1 | (byteAt(bytes, at) >> bit & 1U);
            if (overflows)
                crc ^= kPolynomial;
        }
    return ~crc;
}

/// Eight tables of the division.
const std::uint32_t* tables() {
    static const auto filled = [] {
        auto made = std::make_unique<std::uint32_t[]>(Division::kTables * Division::kTableEntries);
        Division::fillTables(made.get());
        return made;
    }();
    return filled.get();
}

/// Divides the first `split` bytes, then the rest.
template <typename Divide>
std::uint32_t inTwoParts(const Divide& divide, const unsigned char* data, std::size_t size,
                         std::size_t split) {
    return Division::checksum(
        [&](std::uint32_t crc, const unsigned char* bytes, std::size_t count) {
            const std::size_t first = std::min(split, count);
            return divide(divide(crc, bytes, first), bytes + first, count - first);
        },
        data, size);
}

void expectSameChecksums(std::string_view bytes, const unsigned char* data, std::size_t split) {
    unsigned int checksum = 0;
    const unsigned int result = System::CRC::calc(data, static_cast<unsigned>(bytes.size()), &checksum);
    if (bytes.size() < 4) {
        expectSame(System::CRC::kTooShort, result, "the refusal");
        expectSame(0U, checksum, "the checksum that was not calculated");
        return;
    }
    const std::uint32_t expected = checksumOf(bytes);
    expectSame(0U, result, "the result");
    expectSame(expected, checksum, "the checksum");
    expectSame(expected, Division::portable(tables(), data, bytes.size()), "the checksum by tables");
    const auto byTables = [](std::uint32_t crc, const unsigned char* part, std::size_t count) {
        return Division::divide(tables(), crc, part, count);
    };
    expectSame(expected, inTwoParts(byTables, data, bytes.size(), split), "that of two parts");
    if (Division::libraryDivide != nullptr)
        expectSame(expected, inTwoParts(Division::libraryDivide, data, bytes.size(), split),
                   "that of two parts, by the library");
}

} // namespace

/// How far from a round address the bytes begin, where they are split, and the bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::size_t shift = input.byte() % 16;
    const std::size_t split = input.word();
    const std::string_view bytes = input.rest();
    // A block of just that size, so that a sanitizer sees what reads on.
    const auto block = std::make_unique<unsigned char[]>(shift + bytes.size());
    if (!bytes.empty())
        std::memcpy(block.get() + shift, bytes.data(), bytes.size());
    expectSameChecksums(bytes, block.get() + shift, split);
    return 0;
}
