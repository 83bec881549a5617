#include "client/UnitFrameDecoder.h"

#include <gtest/gtest.h>

#include <vector>

#include "FailureKind.h"
#include "FakeLine.h"

namespace station {
namespace {

using testing::ElementsAreArray;

/// Every kind and length of frame, the shortest and the longest included, and every byte value.
std::vector<std::string> allFrames() {
    std::string everyByte;
    for (int value = 0; value < 247; ++value)
        everyByte += static_cast<char>(255 - value);
    return {debugFrame(""),
            statusFrame(),
            debugFrame(std::string(253, 'x')),
            framed(std::string("c\x01\0\0\0\0\0", 7)),
            framed(std::string("c\x01\0\0\0\0\0", 7) + everyByte),
            debugFrame("last")};
}

std::string joined(const std::vector<std::string>& frames) {
    std::string bytes;
    for (const std::string& frame : frames)
        bytes += frame;
    return bytes;
}

void takeAll(UnitFrameDecoder& decoder, std::vector<std::string>& frames) {
    while (const auto frame = decoder.next())
        frames.push_back(frame->bytes());
}

TEST(UnitFrameDecoder, HasNothingBeforeTheFirstByte) {
    UnitFrameDecoder decoder;
    EXPECT_FALSE(decoder.next());
    decoder.feed("");
    EXPECT_FALSE(decoder.next());
    EXPECT_FALSE(decoder.isMidFrame());
}

TEST(UnitFrameDecoder, TakesMergedFramesApart) {
    UnitFrameDecoder decoder;
    decoder.feed(joined(allFrames()));
    std::vector<std::string> frames;
    takeAll(decoder, frames);
    EXPECT_THAT(frames, ElementsAreArray(allFrames()));
    EXPECT_FALSE(decoder.isMidFrame());
}

TEST(UnitFrameDecoder, PutsFramesTogetherFromSingleBytes) {
    UnitFrameDecoder decoder;
    std::vector<std::string> frames;
    for (const char byte : joined(allFrames())) {
        decoder.feed(std::string_view(&byte, 1));
        takeAll(decoder, frames);
    }
    EXPECT_THAT(frames, ElementsAreArray(allFrames()));
}

TEST(UnitFrameDecoder, PutsFramesTogetherFromTwoPiecesSplitAnywhere) {
    const std::string bytes = joined(allFrames());
    for (std::size_t split = 0; split <= bytes.size(); ++split) {
        UnitFrameDecoder decoder;
        std::vector<std::string> frames;
        decoder.feed(std::string_view(bytes).substr(0, split));
        takeAll(decoder, frames);
        decoder.feed(std::string_view(bytes).substr(split));
        takeAll(decoder, frames);
        EXPECT_THAT(frames, ElementsAreArray(allFrames())) << "split at " << split;
    }
}

TEST(UnitFrameDecoder, WaitsForTheLastByte) {
    UnitFrameDecoder decoder;
    const std::string frame = statusFrame();
    decoder.feed(frame.substr(0, frame.size() - 1));
    EXPECT_FALSE(decoder.next());
    EXPECT_TRUE(decoder.isMidFrame());
    decoder.feed(frame.substr(frame.size() - 1));
    EXPECT_TRUE(decoder.next());
}

struct Malformed {
    std::string bytes;
    std::string message;

    friend void PrintTo(const Malformed& row, std::ostream* out) {
        *out << testing::PrintToString(row.bytes);
    }
};

class UnitFrameDecoderRefuses : public testing::TestWithParam<Malformed> {};

TEST_P(UnitFrameDecoderRefuses, UntilItIsRestarted) {
    UnitFrameDecoder decoder;
    decoder.feed(debugFrame("first") + GetParam().bytes);
    EXPECT_EQ(decoder.next().value().text(), "first");
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_THAT(failureOf([&] { decoder.next(); }),
                    FailsWith(Failure::Kind::MalformedAnswer, GetParam().message));
        decoder.feed(statusFrame());
    }
    decoder.restart();
    EXPECT_FALSE(decoder.isMidFrame());
    decoder.feed(debugFrame("second"));
    EXPECT_EQ(decoder.next().value().text(), "second");
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, UnitFrameDecoderRefuses,
    testing::Values(Malformed{std::string(1, '\0'), "a frame of 0 bytes, beginning with hex(00"},
                    Malformed{"\x01", "a frame of 1 bytes, beginning with hex(01"},
                    Malformed{"\x01"
                              "d",
                              "a frame of 1 bytes, beginning with hex(01 64"},
                    Malformed{"\x02\x06", "a frame too short for an answer, beginning with hex(02 06"},
                    Malformed{"\x07s", "a frame too short for an answer, beginning with hex(07 73"}));

TEST(UnitFrame, TellsItsParts) {
    const UnitFrame frame(framed("\x63\x01\x02\x81\x23\x45\x67payload"));
    EXPECT_FALSE(frame.isDebug());
    EXPECT_EQ(frame.id(), 0x63);
    EXPECT_EQ(frame.subCommand(), 0x01);
    EXPECT_EQ(frame.parameter(), 0x02);
    EXPECT_EQ(frame.code(), 0x81234567U);
    EXPECT_EQ(frame.payload(), "payload");
    EXPECT_FALSE(frame.isStatus());
}

TEST(UnitFrame, TellsADebugText) {
    const UnitFrame frame(debugFrame("text"));
    EXPECT_TRUE(frame.isDebug());
    EXPECT_EQ(frame.text(), "text");
}

TEST(UnitFrame, TellsAStatusFromWhatIsNone) {
    EXPECT_TRUE(UnitFrame(statusFrame()).isStatus());
    EXPECT_TRUE(UnitFrame(statusFrame(true)).isStatus());
    std::string otherCommand = statusFrame();
    otherCommand[1] = 'c';
    EXPECT_FALSE(UnitFrame(otherCommand).isStatus());
    std::string otherEcho = statusFrame();
    otherEcho[2] = 1;
    EXPECT_FALSE(UnitFrame(otherEcho).isStatus());
    std::string refusal = statusFrame();
    refusal[7] = 1;
    EXPECT_FALSE(UnitFrame(refusal).isStatus());
    EXPECT_FALSE(UnitFrame(framed(statusFrame().substr(1, 22))).isStatus());
    EXPECT_FALSE(UnitFrame(framed(statusFrame().substr(1) + "x")).isStatus());
}

} // namespace
} // namespace station
