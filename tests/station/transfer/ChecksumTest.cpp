#include "transfer/Checksum.h"

#include <gtest/gtest.h>

#include "core/CRC.h"
#include "support/TestBytes.h"

namespace station {
namespace {

std::uint32_t byTheUnit(const std::string& bytes) {
    unsigned int crc = 0;
    EXPECT_EQ(System::CRC::calc(reinterpret_cast<const unsigned char*>(bytes.data()),
                                static_cast<unsigned int>(bytes.size()), &crc),
              0U);
    return crc;
}

TEST(Checksum, IsTheUnitsForEachLength) {
    const std::string bytes = variedBytes(1000);
    for (std::size_t length = 4; length <= bytes.size(); ++length)
        ASSERT_EQ(checksumOf(bytes.substr(0, length)), byTheUnit(bytes.substr(0, length))) << length;
}

TEST(Checksum, DoesNotDependOnThePieces) {
    const std::string bytes = variedBytes(100);
    const std::uint32_t whole = byTheUnit(bytes);
    for (std::size_t piece = 1; piece <= bytes.size(); ++piece) {
        Checksum checksum;
        for (std::size_t at = 0; at < bytes.size(); at += piece)
            checksum.add(std::string_view(bytes).substr(at, piece));
        ASSERT_EQ(checksum.value(), whole) << piece;
    }
}

TEST(Checksum, HasKnownValues) {
    EXPECT_EQ(checksumOf("123456789"), 0x74527081U);
    EXPECT_EQ(checksumOf(std::string(4096, '\0')), 0x9120DC06U);
    EXPECT_EQ(checksumOf("\x12\x34\x56\x78"), 0x12345678U);
}

TEST(Checksum, NeedsFourBytes) {
    EXPECT_EQ(checksumOf(""), std::nullopt);
    EXPECT_EQ(checksumOf("abc"), std::nullopt);
}

} // namespace
} // namespace station
