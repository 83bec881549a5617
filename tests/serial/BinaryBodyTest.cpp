#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "line/BinaryLink.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

// Long enough for the unit to have given a request up, which it does after 500 ms.
constexpr std::chrono::milliseconds kGivenUp{1500};
// Together longer than a single wait of the unit.
constexpr std::chrono::milliseconds kBetweenBytes{100};

class BinaryBodyTest : public BinaryLinkTest {};

TEST_F(BinaryBodyTest, ARequestMayComeByteByByte) {
    const std::string request = "\6x\1\2\3\4";
    for (const char byte : request) {
        adapter.send({&byte, 1});
        adapter.waitUntilTaken();
    }
    expectFrames(refusal(request, "No Handler for the Command x"));
    acknowledge();
}

TEST_F(BinaryBodyTest, EachByteHasItsOwnTime) {
    const std::string request = "\x08x\1\2\3\4\5\6";
    for (const char byte : request) {
        observeFor(kBetweenBytes);
        adapter.send({&byte, 1});
    }
    expectFrames(refusal(request, "No Handler for the Command x"));
    acknowledge();
}

struct Short {
    std::string sent;
    std::string frames;
};

TEST_F(BinaryBodyTest, WhatDoesNotComeIsZero) {
    const std::string unknown = "No Handler for the Command x";
    const Short kRows[] = {
        {"\5x\7"s, refusal("\5x\7\0\0"s, unknown)},
        {"\5x"s, refusal("\5x\0\0\0"s, unknown)},
        {"\xFFx\7"s, refusal("\xFFx\7\0"s, unknown)},
        {"\4s\1"s, refusal("\4s\1\0"s, "Command 's': too long!")},
        {"\x0A"s + "c\1\0\5ls"s, refusal("\x0A"s + "c\1\0"s, "invalid character in input command: 00")},
    };
    for (const Short& row : kRows) {
        expectReply(row.sent, row.frames);
        acknowledge();
        expectServed();
    }
}

TEST_F(BinaryBodyTest, ARequestThatIsPaddedMayStillNotBeAnswerable) {
    expectReply("\3x", unanswerable("No Handler for the Command x"));
    expectErrors({LinkErrors::kOutOfRange});
}

TEST_F(BinaryBodyTest, ALengthAloneIsDropped) {
    for (const char* length : {"\2", "\5", "\xFF"}) {
        adapter.send(length);
        EXPECT_TRUE(adapter.isSilentFor(kGivenUp));
        expectServed();
    }
}

TEST_F(BinaryBodyTest, NoiseBetweenRequestsIsTakenForARequestAndForgotten) {
    const std::string noise = "\4\xFF\xFE\xFD"s;
    expectExchange(noise, refusal(noise, "No Handler for the Command 0xFF"));
    expectReply("\3\x80\x80", unanswerable("No Handler for the Command 0x80"));
    expectErrors({LinkErrors::kOutOfRange});
    adapter.send("\x40");
    EXPECT_TRUE(adapter.isSilentFor(kGivenUp));
}

} // namespace
