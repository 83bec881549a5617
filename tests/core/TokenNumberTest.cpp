#include "core/TokenNumber.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/Rows.h"
#include "support/ScriptedCommand.h"

TEST(TokenNumberTest, BeyondItsWidthANumberIsTheNearest) {
    EXPECT_EQ(tokenNumber(token("0x7FFFFFFFFFFFFFFF")), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(tokenNumber(token("0x8000000000000000")), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(tokenNumber(token("-9223372036854775809")), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(tokenNumber(token("-4294967297")), -4294967297);
}

TEST(TokenNumberTest, ARangeEndsWithItsHighestNumber) {
    const Rows<const char*, std::uint32_t, std::optional<std::uint32_t>> rows = {
        {"0", 0, 0},
        {"1", 0, std::nullopt},
        {"255", 255, 255},
        {"0377", 255, 255},
        {"256", 255, std::nullopt},
        {"-0", 255, 0},
        {"-1", 255, std::nullopt},
        {"-256", 255, std::nullopt},
        {"word", 255, 0},
        {"", 255, 0},
        {"7 of 300", 255, 7},
        {"0xFFFFFFFF", 0xFFFFFFFF, 0xFFFFFFFF},
        {"0x100000000", 0xFFFFFFFF, std::nullopt},
        {"0x10000000000000000", 0xFFFFFFFF, std::nullopt},
        {"-0x10000000000000000", 0xFFFFFFFF, std::nullopt},
    };
    for (const auto& [text, highest, number] : rows)
        EXPECT_EQ(tokenNumberUpTo(token(text), highest), number) << text;
}
