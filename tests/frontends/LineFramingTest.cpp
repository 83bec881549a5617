#include "frontends/LineFraming.h"

#include <gtest/gtest.h>

TEST(LineFramingTest, ATextStandsBetweenItsMarks) {
    std::string line;
    LineFraming::append(line, "ack ok");
    EXPECT_EQ(line, "\x02#ack ok\x03\n");
}

TEST(LineFramingTest, NoTextIsAnEmptyLine) {
    std::string line;
    LineFraming::append(line, "");
    EXPECT_EQ(line, "\x02#\x03\n");
    EXPECT_EQ(line.size(), LineFraming::kBytes);
}

TEST(LineFramingTest, LinesFollowEachOther) {
    std::string lines = "before";
    LineFraming::append(lines, "one");
    LineFraming::append(lines, "two");
    EXPECT_EQ(lines, "before\x02#one\x03\n\x02#two\x03\n");
}

TEST(LineFramingTest, EveryByteOfATextTravelsAsItIs) {
    std::string text;
    for (int value = 0; value < 256; ++value)
        text += static_cast<char>(value);
    std::string line;
    LineFraming::append(line, text);
    EXPECT_EQ(line, "\x02#" + text + "\x03\n");
    EXPECT_EQ(line.size(), text.size() + LineFraming::kBytes);
}

TEST(LineFramingTest, ATextIsFramedInItsPlace) {
    EXPECT_EQ(LineFraming::frame(""), "\x02#\x03\n");
    std::string text = "ack ok";
    text.reserve(100);
    const char* const place = text.data();
    const std::string line = LineFraming::frame(std::move(text));
    EXPECT_EQ(line, "\x02#ack ok\x03\n");
    EXPECT_EQ(line.data(), place);
}
