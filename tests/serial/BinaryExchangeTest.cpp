#include <gtest/gtest.h>

#include <string>

#include "line/BinaryLink.h"

namespace {

using namespace std::string_literals;

class BinaryExchangeTest : public BinaryLinkTest {};

TEST_F(BinaryExchangeTest, AStatusIsAnsweredAndAcknowledged) {
    adapter.send("\x02s");
    expectFrames(status(true));
    adapter.send("\x02\x06");
}

TEST_F(BinaryExchangeTest, AnUnknownCommandIsRefused) {
    const std::string request = "\4x\0\0"s;
    expectExchange(request, "\x1E"s + "dNo Handler for the Command x" + "\x08x\0\0\1\1\0\0"s);
}

struct Unknown {
    unsigned char id;
    const char* name;
};

TEST_F(BinaryExchangeTest, AnUnknownCommandIsNamed) {
    const Unknown kRows[] = {{'x', "x"},     {'Z', "Z"},     {'a', "a"},     {'S' + 1, "T"},
                             {'@', "0x40"},  {'[', "0x5B"},  {'`', "0x60"},  {'{', "0x7B"},
                             {'0', "0x30"},  {' ', "0x20"},  {0x00, "0x00"}, {0x01, "0x01"},
                             {0x05, "0x05"}, {0x07, "0x07"}, {0x0A, "0x0A"}, {0x7F, "0x7F"},
                             {0x80, "0x80"}, {0xF3, "0xF3"}, {0xFF, "0xFF"}};
    for (const Unknown& row : kRows) {
        const std::string request = "\4"s + static_cast<char>(row.id) + "\1\2";
        expectExchange(request, refusal(request, "No Handler for the Command "s + row.name));
    }
}

TEST_F(BinaryExchangeTest, EveryByteTravelsUnchanged) {
    for (int byte = 0; byte <= 0xFF; ++byte) {
        const std::string request{4, 'x', static_cast<char>(byte), static_cast<char>(0xFF - byte)};
        expectExchange(request, refusal(request, "No Handler for the Command x"));
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(BinaryExchangeTest, TheLongestRequestIsReadWhole) {
    std::string rest = "x";
    for (int byte = 2; byte < 0xFF; ++byte)
        rest += static_cast<char>(byte);
    const std::string request = framed(rest);
    ASSERT_EQ(request.size(), 255U);
    for (int round = 0; round < 10; ++round)
        expectExchange(request, refusal(request, "No Handler for the Command x"));
}

TEST_F(BinaryExchangeTest, AnAcknowledgementThatNobodyWaitsForIsNotAnswered) {
    for (const std::string& request :
         {"\x02\x06"s, "\x03\x06\0"s, "\x04\x06\0\0"s, framed("\x06"s + std::string(253, 'x'))}) {
        adapter.send(request);
        expectServed();
    }
}

TEST_F(BinaryExchangeTest, SurplusAcknowledgementsChangeNothing) {
    const std::string request = "\4x\1\2";
    adapter.send(request);
    expectFrames(refusal(request, "No Handler for the Command x"));
    for (int frame = 0; frame < 3; ++frame)
        acknowledge();
    expectServed();
}

TEST_F(BinaryExchangeTest, RequestsThatAreSentTogetherAreAnsweredInTurn) {
    std::string requests;
    std::string answers;
    for (char number = 0; number < 50; ++number) {
        const std::string request{4, 'x', number, 1};
        requests.append(request).append(kAcknowledgement);
        answers += refusal(request, "No Handler for the Command x");
    }
    expectReply(requests, answers);
}

TEST_F(BinaryExchangeTest, ARequestInPlaceOfAnAcknowledgementIsLost) {
    expectReply("\x02s\x02s", status(true));
    EXPECT_TRUE(daemon.waitForError(LinkErrors::kNotAnAcknowledgement));
    expectErrors({LinkErrors::kNotAnAcknowledgement});
}

} // namespace
