#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "line/BinaryLink.h"

namespace {

using namespace std::string_literals;

class BinaryAcknowledgementTest : public BinaryLinkTest {
protected:
    /// Leaves the answer to a request without its acknowledgement.
    void askForStatus() { expectReply(kStatusRequest, status(true)); }

    /// The daemon complains; nothing is sent again, and the next request is answered.
    void expectComplaint(const std::string& text) {
        EXPECT_TRUE(daemon.waitForError(text + "\n"));
        expectErrors({text});
        expectServed();
    }
};

TEST_F(BinaryAcknowledgementTest, NoneAtAll) {
    askForStatus();
    expectComplaint("NO ACK message received from the client (not critical)");
}

TEST_F(BinaryAcknowledgementTest, OneByte) {
    expectReply(std::string(kStatusRequest).append("\x02"), status(true));
    expectComplaint("Received Data invalid: 1");
}

TEST_F(BinaryAcknowledgementTest, OneWrongByte) {
    expectReply(std::string(kStatusRequest).append("\xFF"), status(true));
    expectComplaint("Received Data invalid: 1");
}

TEST_F(BinaryAcknowledgementTest, ByteByByte) {
    expectReply(std::string(kStatusRequest).append("\x02"), status(true));
    adapter.waitUntilTaken();
    adapter.send("\x06");
}

TEST_F(BinaryAcknowledgementTest, WrongBytes) {
    for (const std::string& wrong :
         {"\x02\x07"s, "\x02\x15"s, "\x06\x02"s, "\x03\x06"s, "\0\0"s, "\x06\x06"s, "\x82\x86"s}) {
        SCOPED_TRACE(testing::PrintToString(wrong));
        expectReply(std::string(kStatusRequest).append(wrong), status(true));
        expectServed();
        expectErrors({"Received not an Ack-Message"});
    }
}

TEST_F(BinaryAcknowledgementTest, ALateOneIsARequestWithoutAnswer) {
    askForStatus();
    EXPECT_TRUE(daemon.waitForError("NO ACK"));
    adapter.send(kAcknowledgement);
    expectComplaint("NO ACK message received from the client (not critical)");
}

TEST_F(BinaryAcknowledgementTest, EachOneIsCheckedAnew) {
    for (int round = 0; round < 5; ++round) {
        expectExchange(kStatusRequest, status(true));
        adapter.send("\x02s??");
        expectFrames(status(true));
        expectErrors({"Received not an Ack-Message"});
    }
}

TEST_F(BinaryAcknowledgementTest, FramesAreNotRepeated) {
    const std::string request = "\4x\1\2";
    expectReply(request, refusal(request, "No Handler for the Command x"));
    EXPECT_TRUE(daemon.waitForError("NO ACK"));
    EXPECT_TRUE(adapter.isSilentFor(std::chrono::milliseconds(1200)));
    expectComplaint("NO ACK message received from the client (not critical)");
}

} // namespace
