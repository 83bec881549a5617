#include <gtest/gtest.h>

#include <string>

#include "line/BinaryLink.h"

namespace {

using namespace std::string_literals;

class BinaryShortRequestTest : public BinaryLinkTest {};

// A length byte that no request has is answered at once: what follows it is the next request.

TEST_F(BinaryShortRequestTest, ALengthOfZeroIsRefused) {
    expectExchange("\0"s, "\x1D"s + "dCommandlen of 0 not allowed"s + "\x12"s + "drequest size < 4"s +
                              "\x08\0\0\0\1\1\0\0"s);
}

TEST_F(BinaryShortRequestTest, ALengthOfOneIsRefused) {
    expectExchange("\1"s, "\x1D"s + "dCommandlen of 1 not allowed"s + "\x12"s + "drequest size < 4"s +
                              "\x08\0\0\0\1\1\0\0"s);
}

TEST_F(BinaryShortRequestTest, RefusedLengthsDoNotPutTheLinkOutOfStep) {
    for (int round = 0; round < 20; ++round) {
        for (const char length : {'\0', '\1'}) {
            const std::string text =
                "Commandlen of "s + static_cast<char>('0' + length) + " not allowed";
            expectExchange(std::string(1, length), unanswerable(text) + errorFrame({}));
        }
        expectServed();
    }
}

TEST_F(BinaryShortRequestTest, ARefusedLengthIsToBeAcknowledgedAsAnyAnswer) {
    expectReply("\1"s, unanswerable("Commandlen of 1 not allowed") + errorFrame({}));
    EXPECT_TRUE(daemon.waitForError(LinkErrors::kNoAcknowledgement));
    expectErrors({LinkErrors::kNoAcknowledgement});
}

struct Row {
    std::string request;
    const char* text;
};

TEST_F(BinaryShortRequestTest, WhatCannotBeAnsweredIsReported) {
    const Row kRows[] = {
        {"\2x"s, "No Handler for the Command x"},
        {"\2\0"s, "No Handler for the Command 0x00"},
        {"\2\xFF"s, "No Handler for the Command 0xFF"},
        {"\3x\1"s, "No Handler for the Command x"},
        {"\3\x7F\1"s, "No Handler for the Command 0x7F"},
        {"\2c"s, "Command 'c': too short! min.6 bytes"},
        {"\3c\1"s, "Command 'c': too short! min.6 bytes"},
        {"\3s\0"s, "unsupported subcommand"},
        {"\3s\3"s, "unsupported subcommand"},
        {"\3s\xFF"s, "unsupported subcommand"},
    };
    for (const Row& row : kRows) {
        // No answer, so nothing to acknowledge.
        expectReply(row.request, unanswerable(row.text));
        expectErrors({LinkErrors::kOutOfRange});
        expectServed();
    }
}

TEST_F(BinaryShortRequestTest, RequestsThatCannotBeAnsweredMayFollowEachOther) {
    constexpr int kRequests = 100;
    std::string requests;
    std::string frames;
    for (int number = 0; number < kRequests; ++number) {
        requests += "\2x";
        frames += unanswerable("No Handler for the Command x");
        expectErrors({LinkErrors::kOutOfRange});
    }
    expectReply(requests, frames);
}

} // namespace
