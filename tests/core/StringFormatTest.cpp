#include "core/StringFormat.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cwchar>

namespace {

std::string formatWithRoom(std::size_t firstRoom, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

std::string formatWithRoom(std::size_t firstRoom, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string text = vstring_format(firstRoom, format, arguments);
    va_end(arguments);
    return text;
}

} // namespace

TEST(StringFormatTest, FormatsLikePrintf) {
    EXPECT_EQ(string_format("%s", ""), "");
    EXPECT_EQ(string_format("plain"), "plain");
    EXPECT_EQ(string_format("%s%s%X", "diag", " Error 0x", 0x1010000u), "diag Error 0x1010000");
    EXPECT_EQ(string_format("%s%d", "number ", -7), "number -7");
    EXPECT_EQ(string_format("100%%"), "100%");
    EXPECT_EQ(string_format("%c", 'x'), "x");
}

TEST(StringFormatTest, TextsOfAnyLengthFit) {
    // Around the room of the first attempt, where one byte is the terminating zero.
    for (const std::size_t length : {254u, 255u, 256u, 257u, 998u, 999u, 1000u, 1001u, 2000u, 100000u}) {
        SCOPED_TRACE(length);
        const std::string text(length, 'x');
        EXPECT_EQ(string_format("%s", text.c_str()), text);
        EXPECT_EQ(string_format("<%s>", text.c_str()), "<" + text + ">");
    }
}

TEST(StringFormatTest, TheFirstRoomDoesNotMatter) {
    for (const std::size_t room : {1u, 2u, 4u, 5u, 6u, 256u}) {
        SCOPED_TRACE(room);
        EXPECT_EQ(formatWithRoom(room, "%d-%s", 42, "ab"), "42-ab");
    }
}

TEST(StringFormatTest, AZeroByteIsCarried) {
    EXPECT_EQ(string_format("a%cb", 0), std::string("a\0b", 3));
}

TEST(StringFormatTest, WhatCannotBeFormattedIsEmpty) {
    ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
    const wchar_t noCharacter[] = {static_cast<wchar_t>(0x7FFFFFFF), 0};
    EXPECT_EQ(string_format("%ls", noCharacter), "");
}
