#include "wire/LittleEndian.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

const std::vector<unsigned char> kBytes = {0x04, 0x03, 0x02, 0xF1};

TEST(LittleEndianTest, TheLowByteComesFirst) {
    EXPECT_EQ(littleEndian16(kBytes.data()), 0x0304);
    EXPECT_EQ(littleEndian16(kBytes.data() + 2), 0xF102);
    EXPECT_EQ(littleEndian32(kBytes.data()), 0xF1020304U);
}

TEST(LittleEndianTest, ANumberStandsAnywhereInAText) {
    const std::string text = "ab\x04\x03\x02\xF1";
    EXPECT_EQ(littleEndian16(text, 2), 0x0304);
    EXPECT_EQ(littleEndian16(text, 4), 0xF102);
    EXPECT_EQ(littleEndian32(text, 2), 0xF1020304U);
}

TEST(LittleEndianTest, IsWrittenAsItIsRead) {
    std::vector<unsigned char> bytes(4);
    putLittleEndian32(bytes.data(), 0xF1020304U);
    EXPECT_EQ(bytes, kBytes);
    putLittleEndian16(bytes.data(), 0xABCD);
    EXPECT_THAT(bytes, testing::ElementsAre(0xCD, 0xAB, 0x02, 0xF1));
}

TEST(LittleEndianTest, IsAppendedToBytesAndToText) {
    std::vector<unsigned char> bytes = {1};
    appendLittleEndian32(bytes, 0xF1020304U);
    appendLittleEndian16(bytes, 0xABCD);
    EXPECT_THAT(bytes, testing::ElementsAre(1, 0x04, 0x03, 0x02, 0xF1, 0xCD, 0xAB));
    std::string text = "a";
    appendLittleEndian32(text, 0xF1020304U);
    EXPECT_EQ(text, "a\x04\x03\x02\xF1");
}

} // namespace
