#include "wire/Line.h"

#include <gtest/gtest.h>

#include "support/TestBytes.h"

TEST(LineTest, ARequestStandsBetweenItsMarks) {
    std::string line = "before";
    wire::appendRequest(line, "ack");
    EXPECT_EQ(line,
              "before\x02"
              "ack\x03\n");
}

TEST(LineTest, ATextStandsBetweenItsMarks) {
    std::string line;
    wire::appendAnswer(line, "ack ok");
    EXPECT_EQ(line, "\x02#ack ok\x03\n");
}

TEST(LineTest, NoTextIsAnEmptyLine) {
    std::string line;
    wire::appendAnswer(line, "");
    EXPECT_EQ(line, "\x02#\x03\n");
    EXPECT_EQ(line.size(), wire::kAnswerFraming);
}

TEST(LineTest, LinesFollowEachOther) {
    std::string lines = "before";
    wire::appendAnswer(lines, "one");
    wire::appendAnswer(lines, "two");
    EXPECT_EQ(lines, "before\x02#one\x03\n\x02#two\x03\n");
}

TEST(LineTest, EveryByteOfATextTravelsAsItIs) {
    const std::string text = everyByte();
    std::string line;
    wire::appendAnswer(line, text);
    EXPECT_EQ(line, "\x02#" + text + "\x03\n");
    EXPECT_EQ(line.size(), text.size() + wire::kAnswerFraming);
}

TEST(LineTest, ATextIsFramedInItsPlace) {
    EXPECT_EQ(wire::answerLine(""), "\x02#\x03\n");
    std::string text = "ack ok";
    text.reserve(100);
    const char* const place = text.data();
    const std::string line = wire::answerLine(std::move(text));
    EXPECT_EQ(line, "\x02#ack ok\x03\n");
    EXPECT_EQ(line.data(), place);
}
