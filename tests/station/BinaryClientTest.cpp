#include "client/BinaryClient.h"

#include <gtest/gtest.h>

#include "FakeLine.h"
#include "FormTables.h"
#include "PlayedLink.h"
#include "Words.h"
#include "support/Rows.h"

namespace station {
namespace {

using Kind = Failure::Kind;

const std::string kStatusRequest = "\x02s";
const std::string kExecRequest = std::string("\x07\x63\x01\0\x05ls", 7);
const std::string kExecAnswer = framed(std::string("\x63\x01\0\0\0\0\0hi\n", 10));
const std::string kExecRefusal = framed(std::string("\x63\x01\0\x01\x01\0\0", 7));
const std::string kStartup = "startup status " + std::string(kStatusText);
const std::string kPreludeTexts[] = {"Startup State sent but requested again",
                                     "Probaby due to connection cut"};
const std::string kPrelude = debugFrame(kPreludeTexts[0]) + debugFrame(kPreludeTexts[1]);
const std::string kDropped = "station: dropped what had arrived and is no frame";
const std::string kDroppedAnswer = "station: dropped an answer to an earlier command: ";
constexpr char kNoAnswer[] = "time-out while waiting for the answer";
constexpr char kHungUp[] = "hung up the line before the answer was complete";

constexpr char kExec[] = "exec command 5 ls";

/// A frame that is no debug text, and what the station does at once.
Steps acknowledged(const std::string& frames) {
    return arrives(frames) + sent(kAcknowledgement);
}

Steps execAnswered() {
    return sent(kExecRequest) + acknowledged(kExecAnswer);
}
Steps statusAnswered() {
    return sent(kStatusRequest) + acknowledged(statusFrame());
}

Deadline patient() {
    return Deadline::after(Seconds(30));
}

class BinaryClientTest : public testing::Test {
protected:
    /// "raw ..." stands for the bytes themselves.
    Answer execute(const std::string& command, const Steps& steps) {
        PlayedLink link(steps);
        const std::string raw = "raw ";
        const bool isRaw = command.compare(0, raw.size(), raw) == 0;
        return BinaryClient(link, observer())
            .execute(isRaw ? BinaryRequest::raw({command.substr(raw.size())}) : encode(command),
                     patient());
    }

    BinaryClient::Observer observer() {
        return {sinkInto(m_told),
                [this](const UnitFrame& frame) { m_frames.push_back(hexDigits(frame.bytes())); }};
    }

    Infos m_told;
    std::vector<std::string> m_frames;
};

class BinaryClientAnswers : public BinaryClientTest, public testing::WithParamInterface<AnsweredRun> {};

TEST_P(BinaryClientAnswers, With) {
    const Answer answer = execute(GetParam().command, GetParam().steps);
    EXPECT_EQ(answer.text, GetParam().text);
    EXPECT_EQ(answer.code, GetParam().code);
    EXPECT_EQ(m_told, GetParam().infos);
}

const AnsweredRun kAnswered[] = {
    {"DebugTextsThatItDoesNotAcknowledge", kExec,
     sent(kExecRequest) + arrives(debugFrame("one") + debugFrame("")) +
         acknowledged(debugFrame("two") + kExecRefusal),
     "Error 0x1010000", 0x1010000, told("one", "", "two")},
    {"AStatus", "status", statusAnswered(), kStatusText, 0, told()},
    {"AStartupStatusThatCameBefore", "status", acknowledged(statusFrame(true)) + statusAnswered(),
     kStatusText, 0, told(kStartup)},
    {"AStartupStatusWithItsPrelude", "status",
     arrives(kPrelude.substr(0, 10)) + arrives(kPrelude.substr(10)) + acknowledged(statusFrame()) +
         statusAnswered(),
     kStatusText, 0, told(kPreludeTexts[0], kPreludeTexts[1], kStartup)},
    {"ALateAnswerThatCameBefore", kExec, acknowledged(kExecRefusal) + execAnswered(), "hi\n", 0,
     told(kDroppedAnswer + "hex(08 63 01 00 01 01 00 00)")},
    {"HalfAFrameThatCameBefore", kExec, arrives("\x18s,") + kSilence + execAnswered(), "hi\n", 0,
     told(kDropped)},
    {"GarbageThatCameBefore", kExec,
     arrives("\x01garbage") + arrives(debugFrame("text")) + execAnswered(), "hi\n", 0,
     told(kDropped, "text")},
    {"TheFirstStatusBeforeAnotherAnswer", kExec,
     sent(kExecRequest) + arrives(statusFrame(true) + kExecAnswer) + sent(kAcknowledgement) +
         sent(kAcknowledgement),
     "hi\n", 0, told(kStartup)},
    {"AStatusBeforeAnotherAnswer", kExec,
     sent(kExecRequest) + arrives(statusFrame() + kExecAnswer) + sent(kAcknowledgement) +
         sent(kAcknowledgement),
     "hi\n", 0, told(kStartup)},
    {"AStatusBeforeAFile", "status 01",
     sent("\x03s\x01") + acknowledged(statusFrame()) +
         acknowledged(framed(std::string("s\x01\0\0\0\0\0text", 11))),
     "text", 0, told(kStartup)},
    {"TheFirstStatusBeforeAStatus", "status",
     sent(kStatusRequest) + acknowledged(statusFrame(true)) + acknowledged(statusFrame()), kStatusText,
     0, told(kStartup)},
    {"AStatusWithItsPreludeBeforeAStatus", "status",
     sent(kStatusRequest) + acknowledged(kPrelude + statusFrame()) + acknowledged(statusFrame()),
     kStatusText, 0, told(kPreludeTexts[0], kPreludeTexts[1], kStartup)},
    {"NothingToAck", "ack", sent("\x02\x06") + arrives(debugFrame("text")), "", 0, told("text")},
    {"ARefusalOfAck", "ack",
     sent("\x02\x06") + acknowledged(framed(std::string("\x06\0\0\x01\x01\0\0", 7))), "Error 0x1010000",
     0x1010000, told()},
    {"ARefusalOfRawBytes", "raw hex(01)",
     sent("\x01") + acknowledged(framed(std::string("\0\0\0\x01\x01\0\0", 7))), "Error 0x1010000",
     0x1010000, told()},
    {"NothingToRawBytesThatAreAnAck", "raw hex(02 06)",
     sent(kAcknowledgement) + arrives(debugFrame("x")), "", 0, told("x")},
};

INSTANTIATE_TEST_SUITE_P(Runs, BinaryClientAnswers, testing::ValuesIn(kAnswered), titleOf);

class BinaryClientFails : public BinaryClientTest, public testing::WithParamInterface<FailedRun> {};

TEST_P(BinaryClientFails, With) {
    EXPECT_THAT(failureOf([&] { execute(GetParam().command, GetParam().steps); }),
                FailsWith(GetParam().kind, GetParam().message));
    EXPECT_EQ(m_told, GetParam().infos);
}

const FailedRun kFailed[] = {
    {"AnAnnouncementThatMayHaveCostTheRequest", "status",
     sent(kStatusRequest) + acknowledged(statusFrame(true)), Kind::TimedOut,
     "the unit opened its port after the request was sent", told(kStartup)},
    {"HalfAnAnswer", kExec,
     sent(kExecRequest) + arrives(debugFrame("almost")) + arrives(kExecAnswer.substr(0, 9)),
     Kind::TimedOut, kNoAnswer, told("almost")},
    {"AnAnswerToAnotherCommand", "status", sent(kStatusRequest) + acknowledged(kExecAnswer),
     Kind::MalformedAnswer, "expected one to hex(02 73): hex(0B 63 01 00 00 00 00 00 68 69 0A)", told()},
    {"AMalformedFrameWithoutWaitingForMore", kExec, sent(kExecRequest) + arrives(std::string(1, '\0')),
     Kind::MalformedAnswer, "a frame of 0 bytes", told()},
    {"ALineThatHasHungUp", kExec, kHangUp, Kind::ConnectionLost, kHungUp, told()},
    {"AHangUpBeforeTheAnswer", kExec, sent(kExecRequest) + kHangUp, Kind::ConnectionLost, kHungUp,
     told()},
    {"AHangUpInTheAnswer", kExec, sent(kExecRequest) + arrives(kExecAnswer.substr(0, 4)) + kHangUp,
     Kind::ConnectionLost, kHungUp, told()},
    {"NothingToRawBytes", "raw hex(03 73)", sent("\x03s") + arrives(debugFrame("x")), Kind::TimedOut,
     kNoAnswer, told("x")},
};

INSTANTIATE_TEST_SUITE_P(Runs, BinaryClientFails, testing::ValuesIn(kFailed), titleOf);

TEST_F(BinaryClientTest, HandsOutThePayloadOfAnAnswer) {
    const Answer answer = execute(kExec, execAnswered());
    EXPECT_EQ(answer.text, "hi\n");
    EXPECT_EQ(answer.code, 0U);
    EXPECT_EQ(answer.payload, "hi\n");
    EXPECT_EQ(m_told, told());
}

TEST_F(BinaryClientTest, TakesAPreludeForOneOnlyDirectlyBeforeTheStatus) {
    for (const std::string& texts :
         {kPrelude + debugFrame("other"), debugFrame(kPreludeTexts[0]), debugFrame(kPreludeTexts[1]),
          debugFrame(kPreludeTexts[1]) + debugFrame(kPreludeTexts[0])})
        EXPECT_EQ(execute("status", sent(kStatusRequest) + acknowledged(texts + statusFrame())).text,
                  kStatusText);
}

TEST_F(BinaryClientTest, RunsCommandsOneAfterTheOther) {
    PlayedLink link(statusAnswered() + execAnswered());
    BinaryClient client(link, observer());
    EXPECT_EQ(client.execute(encode("status"), patient()).text, kStatusText);
    EXPECT_EQ(client.execute(encode(kExec), patient()).text, "hi\n");
    EXPECT_EQ(m_told, told());
}

TEST_F(BinaryClientTest, WaitsForTheStartupStatus) {
    PlayedLink link(arrives("\xF0noise") + kSilence + acknowledged(debugFrame("text") + kExecRefusal) +
                    acknowledged(statusFrame(true)) + execAnswered());
    BinaryClient client(link, observer());
    client.waitForStartup(patient());
    EXPECT_EQ(client.execute(encode(kExec), patient()).text, "hi\n");
    EXPECT_EQ(m_told, told(kDropped, "text", kDroppedAnswer + "hex(08 63 01 00 01 01 00 00)", kStartup));
}

TEST_F(BinaryClientTest, TimesOutWithoutAStartupStatus) {
    PlayedLink link(arrives(debugFrame("text")));
    BinaryClient client(link, observer());
    EXPECT_THAT(failureOf([&] { client.waitForStartup(patient()); }),
                FailsWith(Kind::TimedOut, "time-out while waiting for the startup status"));
}

TEST_F(BinaryClientTest, GivesUpOnALineThatNeverFallsSilent) {
    class Chatter : public Link {
    public:
        void send(std::string_view, const Deadline&) override {}
        std::optional<std::string> receiveBy(const Deadline&) override { return debugFrame("x"); }
    } link;
    BinaryClient client(link, {[](const std::string&) {}});
    EXPECT_THAT(failureOf([&] { client.execute(encode(kExec), Deadline::after(Seconds(0.05))); }),
                FailsWith(Kind::TimedOut, kNoAnswer));
}

TEST_F(BinaryClientTest, ShowsEveryFrameThatComesForRawBytes) {
    const std::string refusal = framed(std::string("x\0\0\x01\x01\0\0", 7));
    const Answer answer =
        execute("raw hex(04 78 00 00)", sent(std::string("\x04x\0\0", 4)) + arrives(debugFrame("no")) +
                                            acknowledged(refusal) + acknowledged(statusFrame()) +
                                            arrives(debugFrame("end")));
    EXPECT_EQ(answer.code, 0U) << "of the last answer";
    EXPECT_EQ(answer.text, "");
    EXPECT_EQ(answer.payload, statusFrame().substr(8));
    EXPECT_THAT(m_frames, testing::ElementsAre("04646E6F", hexDigits(refusal), hexDigits(statusFrame()),
                                               "0564656E64"));
    EXPECT_EQ(m_told, told("no", "end"));
}

} // namespace
} // namespace station
