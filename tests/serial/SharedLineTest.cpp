// The station's line in the hands of two: its front end, and stations on TCP that read it, write to it,
// close and open it.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "AsciiDaemonTest.h"
#include "line/BinaryLink.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

// Its answer is more than a line takes before its station reads, and leaves room for others to write.
constexpr std::size_t kLongContent = 150'000;
constexpr int kRounds = 20;
constexpr int kTypingRounds = 100; // the moment has to be met
constexpr long kSomeAnswers = 20;

const std::string kClose = request("serial close 3");
const std::string kOpen = request("serial open 3 115200 0");
const std::string kOk = answer("serial ok");

class AsciiSharedLineTest : public AsciiDaemonTest {
protected:
    /// Nothing but what the front end itself does may hold up its station.
    void expectServed() {
        const std::string name = "served" + std::to_string(m_served++);
        expectExchange(adapter, request(name), unknown(name));
    }

    void askForMore() {
        writeFile(kImageVersionFile, std::string(kLongContent, 'x'));
        adapter.send(request("status 01"));
        ASSERT_FALSE(adapter.isSilentFor(kPatience));
    }

    static std::string more() {
        return answer("status base64(" + base64(std::string(kLongContent, 'x')) + ")");
    }

    static std::string sending(const std::string& data) {
        return request("serial send 3 base64(" + base64(data) + ")");
    }

    /// Answers "serial get" or "getall", with whatever has come.
    void expectTransfer(const std::string& text) {
        other.send(request(text));
        const std::string line = other.receiveLine();
        EXPECT_EQ(line.rfind("\x02#serial get", 0), 0U) << line;
    }

    Connection other;

private:
    int m_served = 0;
};

TEST_F(AsciiSharedLineTest, IsReadByAnotherWhileItsStationTypes) {
    const Witness witness;
    for (int round = 0; round < kTypingRounds; ++round) {
        other.send(request("serial get 3 5"));
        // One byte, while both wait for it: it wakes both and feeds only one.
        if (!other.hasInputWithin(std::chrono::milliseconds(5)))
            adapter.send("t");
        const std::string line = other.receiveLine();
        ASSERT_EQ(line.rfind("\x02#serial get 0x03 base64(", 0), 0U) << line;
    }
    EXPECT_TRUE(witness.seesMore(kSomeAnswers));
    expectServed();
}

TEST_F(AsciiSharedLineTest, IsUsedByAnotherWhileItsStationDoesNotReadAnAnswer) {
    askForMore();
    {
        const Witness witness;
        expectTransfer("serial getall 3");
        expectTransfer("serial get 3 5");
        expectExchange(other, sending("in its turn!"), kOk);
        EXPECT_TRUE(witness.seesMore(kSomeAnswers));
    }
    expectExchange(adapter, "", more() + "in its turn!");
    expectServed();
}

TEST_F(AsciiSharedLineTest, TakesALotFromAnotherWhileItsStationDoesNotRead) {
    const std::string data(9'999, 'd');
    std::string sent;
    std::string reply = kOk;
    while (reply == kOk && sent.size() < 10'000'000) {
        sent += data;
        other.send(sending(data));
        reply = other.receiveLine();
    }
    sent.resize(sent.size() - data.size());
    EXPECT_EQ(
        reply,
        answer("Info \"Failed to write to /dev/usbserialadapter1: Resource temporarily unavailable, "
               "errorcode: 11\""));
    EXPECT_EQ(other.receiveLine(), answer("serial Error 0xA000000"));
    expectExchange(adapter, "", sent);
    expectServed();
}

TEST_F(AsciiSharedLineTest, IsGreetedAndServedAfterAnotherHasClosedIt) {
    for (int round = 0; round < kRounds; ++round) {
        expectExchange(other, kClose, kOk);
        expectBanner();
        expectServed();
    }
}

TEST_F(AsciiSharedLineTest, IsServedWithoutAGreetingAfterAnotherHasOpenedIt) {
    for (int round = 0; round < kRounds; ++round) {
        expectExchange(other, kOpen, kOk);
        expectServed();
    }
}

TEST_F(AsciiSharedLineTest, LosesNoMoreThanTheLineThatItWasTyping) {
    for (const std::string& change : {kClose, kOpen}) {
        adapter.send("\x02half a li");
        adapter.waitUntilTaken();
        expectExchange(other, change, kOk);
        if (change == kClose)
            expectBanner();
        expectServed();
    }
}

TEST_F(AsciiSharedLineTest, CanBeClosedWhileItsStationDoesNotReadAnAnswer) {
    const std::string all = more();
    askForMore();
    const std::string beginning = adapter.receive(1000);
    EXPECT_EQ(beginning, all.substr(0, beginning.size()));
    {
        const Witness witness;
        expectExchange(other, kClose, kOk);
        EXPECT_TRUE(witness.seesMore(kSomeAnswers));
    }
    // What had left already still comes, then the greeting of the port that was opened anew.
    std::string rest;
    while (rest.size() < all.size() && rest.find(banner(daemon)) == std::string::npos)
        rest += adapter.receive(1);
    EXPECT_LT(rest.size(), all.size());
    expectServed();
}

class BinarySharedLineTest : public BinaryLinkTest {};

TEST_F(BinarySharedLineTest, IsReadByAnotherWhileItsStationIsSilent) {
    Connection other;
    const Witness witness;
    for (int round = 0; round < kRounds; ++round) {
        other.send(request("serial get 3 5"));
        EXPECT_EQ(other.receiveLine(), answer("serial get 0x03 base64(AAAAAAA=)"));
    }
    EXPECT_TRUE(witness.seesMore(kSomeAnswers));
    expectServed();
}

TEST_F(BinarySharedLineTest, IsAnnouncedAndServedAfterAnotherHasClosedIt) {
    Connection other;
    const Witness witness;
    for (int round = 0; round < 3; ++round) {
        ::expectExchange(other, kClose, kOk);
        expectReturn();
        expectServed();
    }
    EXPECT_TRUE(witness.seesMore(kSomeAnswers));
}

TEST_F(BinarySharedLineTest, IsServedWithoutAnAnnouncementAfterAnotherHasOpenedIt) {
    Connection other;
    for (int round = 0; round < kRounds; ++round) {
        ::expectExchange(other, kOpen, kOk);
        expectServed();
    }
}

TEST_F(BinarySharedLineTest, LosesNoMoreThanTheRequestThatItWasSending) {
    Connection other;
    for (const std::string& change : {kClose, kOpen}) {
        // Alone it is dropped also when the change comes late.
        adapter.send("\x05");
        adapter.waitUntilTaken();
        ::expectExchange(other, change, kOk);
        if (change == kClose)
            expectReturn();
        expectServed();
    }
}

TEST_F(BinarySharedLineTest, NeedsNoAcknowledgementOnceAnotherHasOpenedIt) {
    Connection other;
    adapter.send(kStatusRequest);
    expectFrames(status(true));
    ::expectExchange(other, kOpen, kOk);
    acknowledge(); // which comes too late to be one, and gets no answer
    expectServed();
}

} // namespace
