#include <gtest/gtest.h>

#include <string>

#include "line/BinaryLink.h"
#include "line/GatedCommand.h"
#include "support/Waiting.h"

namespace {

constexpr char kSendFailed[] =
    "~ ### ~ Exception: ID: 0x5 DESC: Failed to write to /dev/usbserialadapter1: Input/output error";
constexpr char kAcknowledgeFailed[] =
    "~ ### ~ Exception: ID: 0x5 DESC: Failed to read from /dev/usbserialadapter1: Input/output error";

/// The line is cut once in each phase of an exchange: what exactly the unit says, and how it comes back.
class BinaryHangUpTest : public BinaryLinkTest {
protected:
    GatedCommand command;

    void replug() {
        adapter.pull();
        adapter.plug();
        expectReturn();
    }

    /// The line is away while the answer leaves.
    void expectSendingToFail() {
        command.start(adapter, daemon);
        adapter.pull();
        command.openGate();
        EXPECT_TRUE(daemon.waitForError(kSendFailed));
        adapter.plug();
        expectReturn();
        expectErrors({"File /tmp/resp.txt is empty", kSendFailed});
    }
};

TEST_F(BinaryHangUpTest, BeforeARequest) {
    adapter.waitUntilTaken();
    replug();
    expectErrors({"Read locked error in CommHandler", "Error in Listener thead loop",
                  "3~ ### ~ Exception: ID: 0x5 DESC: Failed to read from /dev/usbserialadapter1: "
                  "Input/output error"});
}

TEST_F(BinaryHangUpTest, AfterTheLengthByte) {
    adapter.send("\x04");
    adapter.waitUntilTaken();
    replug();
    expectErrors({LinkErrors::kReadFailed, LinkErrors::kHungUp});
}

TEST_F(BinaryHangUpTest, InTheBody) {
    adapter.send("\x04x");
    adapter.waitUntilTaken();
    replug();
    expectErrors({LinkErrors::kReadFailed, LinkErrors::kHungUp});
}

TEST_F(BinaryHangUpTest, WhileTheCommandRuns) {
    expectSendingToFail();
}

TEST_F(BinaryHangUpTest, OnANewLineWhileTheCommandRuns) {
    command.start(adapter, daemon);
    adapter.pull();
    adapter.plug();
    command.openGate();
    // The answer belonged to the old line.
    expectReturn();
    expectErrors({"File /tmp/resp.txt is empty", kSendFailed});
}

TEST_F(BinaryHangUpTest, BeforeTheAcknowledgement) {
    expectReply(kStatusRequest, status(true));
    replug();
    expectErrors({LinkErrors::kReadFailed, kAcknowledgeFailed});
}

TEST_F(BinaryHangUpTest, InTheAcknowledgement) {
    expectReply(kStatusRequest, status(true));
    adapter.send("\x02");
    adapter.waitUntilTaken();
    replug();
    expectErrors({LinkErrors::kReadFailed, kAcknowledgeFailed});
}

TEST_F(BinaryHangUpTest, FailedSendingIsReportedOnceForGood) {
    expectSendingToFail();
    for (unsigned round = 0; round < 3; ++round) {
        command.start(adapter, daemon);
        adapter.pull();
        command.openGate();
        // The acknowledgement cannot be read either. The next read notices, once there is a node again.
        EXPECT_TRUE(eventually([&] { return errorLines(daemon).size() == 5U + 6U * round; }));
        adapter.plug();
        expectReturn();
        expectErrors(
            {"File /tmp/resp.txt is empty", LinkErrors::kReadFailed, LinkErrors::kNoAcknowledgement});
        expectErrors(LinkErrors::kLineGone);
    }
}

TEST_F(BinaryHangUpTest, AFailedAcknowledgementIsReportedOnceForGood) {
    expectReply(kStatusRequest, status(true));
    replug();
    expectErrors({LinkErrors::kReadFailed, kAcknowledgeFailed});
    for (int round = 0; round < 3; ++round) {
        expectReply(kStatusRequest, status(true));
        replug();
        expectErrors({LinkErrors::kReadFailed, LinkErrors::kNoAcknowledgement});
        expectErrors(LinkErrors::kLineGone);
    }
}

} // namespace
