#include "client/AnswerDecoder.h"

#include <gtest/gtest.h>

#include <vector>

#include "FailureKind.h"
#include "FakeUnit.h"

namespace station {
namespace {

using testing::ElementsAreArray;

const std::vector<std::string> kTexts = {
    "status ok", "",  "Info \"two\nlines and a \" mark\"", "ends with ETX\x03", "\x02#\x03 inside",
    "\n",        "#", std::string("nul\0byte", 8)};

std::string framedTexts() {
    std::string bytes;
    for (const std::string& text : kTexts)
        bytes += answer(text);
    return bytes;
}

std::vector<std::string> takeAll(AnswerDecoder& decoder) {
    std::vector<std::string> texts;
    while (auto text = decoder.next())
        texts.push_back(*text);
    return texts;
}

TEST(AnswerDecoder, HasNothingBeforeTheFirstByte) {
    AnswerDecoder decoder;
    EXPECT_EQ(decoder.next(), std::nullopt);
    decoder.feed("");
    EXPECT_EQ(decoder.next(), std::nullopt);
}

TEST(AnswerDecoder, TakesMergedLinesApart) {
    AnswerDecoder decoder;
    decoder.feed(framedTexts());
    EXPECT_THAT(takeAll(decoder), ElementsAreArray(kTexts));
}

TEST(AnswerDecoder, PutsLinesTogetherFromSingleBytes) {
    AnswerDecoder decoder;
    std::vector<std::string> texts;
    for (const char byte : framedTexts()) {
        decoder.feed(std::string_view(&byte, 1));
        for (const std::string& text : takeAll(decoder))
            texts.push_back(text);
    }
    EXPECT_THAT(texts, ElementsAreArray(kTexts));
}

TEST(AnswerDecoder, PutsLinesTogetherFromTwoPiecesSplitAnywhere) {
    const std::string bytes = framedTexts();
    for (std::size_t split = 0; split <= bytes.size(); ++split) {
        AnswerDecoder decoder;
        decoder.feed(std::string_view(bytes).substr(0, split));
        std::vector<std::string> texts = takeAll(decoder);
        decoder.feed(std::string_view(bytes).substr(split));
        for (const std::string& text : takeAll(decoder))
            texts.push_back(text);
        EXPECT_THAT(texts, ElementsAreArray(kTexts)) << "split at " << split;
    }
}

TEST(AnswerDecoder, WaitsForTheLineFeed) {
    AnswerDecoder decoder;
    decoder.feed("\x02#a\x03");
    EXPECT_EQ(decoder.next(), std::nullopt);
    decoder.feed("\n");
    EXPECT_EQ(decoder.next(), "a");
}

class AnswerDecoderRefuses : public testing::TestWithParam<std::string> {};

TEST_P(AnswerDecoderRefuses, WhatDoesNotBeginALine) {
    AnswerDecoder decoder;
    decoder.feed(answer("first") + GetParam());
    EXPECT_EQ(decoder.next(), "first");
    for (int attempt = 0; attempt < 2; ++attempt)
        EXPECT_THAT(failureOf([&] { decoder.next(); }),
                    FailsWith(Failure::Kind::MalformedAnswer, "does not begin with STX and '#'"));
}

INSTANTIATE_TEST_SUITE_P(Bytes, AnswerDecoderRefuses,
                         testing::Values("x", "\n", "\x03", "#", "\x02\x02", "\2a\x03\n", "\x02\x03\n",
                                         "HTTP/1.1 400 Bad Request\r\n", std::string(1, '\0')));

TEST(AnswerDecoder, TakesATextOfTheLimit) {
    AnswerDecoder decoder(4);
    decoder.feed(answer("1234"));
    EXPECT_EQ(decoder.next(), "1234");
}

TEST(AnswerDecoder, RefusesALongerTextThanTheLimit) {
    AnswerDecoder decoder(4);
    decoder.feed(answer("12345"));
    EXPECT_THAT(failureOf([&] { decoder.next(); }),
                FailsWith(Failure::Kind::MalformedAnswer, "longer than 4 bytes"));
}

TEST(AnswerDecoder, RefusesATextThatNeverEndsOnceItIsTooLong) {
    AnswerDecoder decoder(4);
    decoder.feed("\x02#1234");
    EXPECT_EQ(decoder.next(), std::nullopt);
    decoder.feed("\x03");
    EXPECT_EQ(decoder.next(), std::nullopt) << "this may still be the end of a text of the limit";
    decoder.feed("5");
    EXPECT_THAT(failureOf([&] { decoder.next(); }),
                FailsWith(Failure::Kind::MalformedAnswer, "longer than 4 bytes"));
}

} // namespace
} // namespace station
