#include "wire/BigEndian.h"

#include <gmock/gmock.h>

using ::testing::ElementsAre;

namespace {

using Bytes = std::vector<unsigned char>;

Bytes putInto(Bytes frame, std::size_t at, std::uint16_t value) {
    putBigEndian16(frame, at, value);
    return frame;
}

Bytes putInto(Bytes frame, std::size_t at, std::uint32_t value) {
    putBigEndian32(frame, at, value);
    return frame;
}

} // namespace

TEST(BigEndianTest, TheMostSignificantByteComesFirst) {
    const Bytes frame = {0x12, 0x34, 0x56, 0x78, 0x9A};
    EXPECT_EQ(bigEndian16(frame, 0), 0x1234);
    EXPECT_EQ(bigEndian16(frame, 3), 0x789A);
    EXPECT_EQ(bigEndian32(frame, 0), 0x12345678u);
    EXPECT_EQ(bigEndian32(frame, 1), 0x3456789Au);
}

TEST(BigEndianTest, HighBitsAreNoSigns) {
    const Bytes frame = {0xFF, 0xFF, 0xFF, 0xFF, 0x80, 0x00, 0x00, 0x80};
    EXPECT_EQ(bigEndian16(frame, 0), 0xFFFF);
    EXPECT_EQ(bigEndian16(frame, 4), 0x8000);
    EXPECT_EQ(bigEndian16(frame, 6), 0x0080);
    EXPECT_EQ(bigEndian32(frame, 0), 0xFFFFFFFFu);
    EXPECT_EQ(bigEndian32(frame, 4), 0x80000080u);
    EXPECT_EQ(bigEndian32(frame, 2), 0xFFFF8000u);
}

TEST(BigEndianTest, PuttingChangesThoseBytesAlone) {
    const Bytes frame(7, 0xEE);
    EXPECT_THAT(putInto(frame, 0, std::uint16_t{0x1234}),
                ElementsAre(0x12, 0x34, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE));
    EXPECT_THAT(putInto(frame, 5, std::uint16_t{0x00FF}),
                ElementsAre(0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0x00, 0xFF));
    EXPECT_THAT(putInto(frame, 0, std::uint32_t{0x12345678}),
                ElementsAre(0x12, 0x34, 0x56, 0x78, 0xEE, 0xEE, 0xEE));
    EXPECT_THAT(putInto(frame, 3, std::uint32_t{0x80000001}),
                ElementsAre(0xEE, 0xEE, 0xEE, 0x80, 0x00, 0x00, 0x01));
}

TEST(BigEndianTest, WhatWasPutIsReadBack) {
    for (const std::uint32_t value :
         {0u, 1u, 0xFFu, 0x100u, 0x7FFFu, 0x8000u, 0xFFFFu, 0x10000u, 0x7FFFFFFFu, 0x80000000u, ~0u}) {
        SCOPED_TRACE(value);
        const auto low = static_cast<std::uint16_t>(value);
        EXPECT_EQ(bigEndian32(putInto(Bytes(9), 5, value), 5), value);
        EXPECT_EQ(bigEndian16(putInto(Bytes(9), 7, low), 7), low);
    }
}
