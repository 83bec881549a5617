#include "client/BinaryClient.h"

#include <gtest/gtest.h>

#include <deque>
#include <vector>

#include "FailureKind.h"
#include "FakeLine.h"
#include "client/Hex.h"

namespace station {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A line on which exactly the given things happen, in this order. At the end of the script, and while
/// something from the station is due, nothing arrives.
class PlayedLink : public Link {
public:
    struct Step {
        enum Kind { Arrives, Sent, Silence, HangUp } kind;
        std::string bytes = {};
    };

    explicit PlayedLink(std::deque<Step> steps) : m_steps(std::move(steps)) {}
    ~PlayedLink() override { EXPECT_THAT(m_steps, IsEmpty()) << "steps of the script were not used"; }

    void send(std::string_view bytes, const Deadline&) override {
        ASSERT_TRUE(isNext(Step::Sent)) << "sent in between: " << hexDigits(bytes);
        EXPECT_EQ(hexDigits(m_steps.front().bytes), hexDigits(bytes));
        m_steps.pop_front();
    }

    std::optional<std::string> receiveBy(const Deadline&) override {
        if (m_steps.empty() || isNext(Step::Sent))
            return std::nullopt;
        const Step step = m_steps.front();
        m_steps.pop_front();
        if (step.kind == Step::Silence)
            return std::nullopt;
        return step.kind == Step::HangUp ? std::string() : step.bytes;
    }

private:
    bool isNext(Step::Kind kind) const { return !m_steps.empty() && m_steps.front().kind == kind; }

    std::deque<Step> m_steps;
};

using Step = PlayedLink::Step;

Step arrives(std::string bytes) {
    return {Step::Arrives, std::move(bytes)};
}
Step sent(std::string_view bytes) {
    return {Step::Sent, std::string(bytes)};
}
const Step kSilence{Step::Silence};
const Step kHangUp{Step::HangUp};

const std::string kStatusRequest = "\x02s";
const std::string kExecRequest = std::string("\x07\x63\x01\0\x05ls", 7);
const std::string kExecAnswer = framed(std::string("\x63\x01\0\0\0\0\0hi\n", 10));
const std::string kExecRefusal = framed(std::string("\x63\x01\0\x01\x01\0\0", 7));
const std::string kStartup = "startup status " + std::string(kStatusText);
const std::vector<std::string> kPreludeTexts = {"Startup State sent but requested again",
                                                "Probaby due to connection cut"};
const std::string kPrelude = debugFrame(kPreludeTexts[0]) + debugFrame(kPreludeTexts[1]);
constexpr char kDropped[] = "station: dropped what had arrived and is no frame";

Deadline patient() {
    return Deadline::after(Seconds(30));
}

BinaryRequest status() {
    return BinaryRequest::encode("status", {});
}
BinaryRequest exec() {
    return BinaryRequest::encode("exec", {"command", "5", "ls"});
}

class BinaryClientTest : public testing::Test {
protected:
    Answer execute(std::deque<Step> steps, const BinaryRequest& request) {
        PlayedLink link(std::move(steps));
        return BinaryClient(link, observer()).execute(request, patient());
    }

    void expectFailure(std::deque<Step> steps, const BinaryRequest& request, Failure::Kind kind,
                       const std::string& message) {
        EXPECT_THAT(failureOf([&] { execute(std::move(steps), request); }), FailsWith(kind, message));
    }

    BinaryClient::Observer observer() {
        return {[this](const std::string& message) { m_infos.push_back(message); },
                [this](const UnitFrame& frame) { m_frames.push_back(hexDigits(frame.bytes())); }};
    }

    std::vector<std::string> m_infos;
    std::vector<std::string> m_frames;
};

TEST_F(BinaryClientTest, SendsTheRequestAndAcknowledgesTheAnswer) {
    const Answer answer =
        execute({sent(kExecRequest), arrives(kExecAnswer), sent(kAcknowledgement)}, exec());
    EXPECT_EQ(answer.text, "hi\n");
    EXPECT_EQ(answer.code, 0U);
    EXPECT_EQ(answer.payload, "hi\n");
    EXPECT_THAT(m_infos, IsEmpty());
}

TEST_F(BinaryClientTest, HandsDebugTextsOutWithoutAcknowledgingThem) {
    const Answer answer = execute({sent(kExecRequest), arrives(debugFrame("one") + debugFrame("")),
                                   arrives(debugFrame("two") + kExecRefusal), sent(kAcknowledgement)},
                                  exec());
    EXPECT_EQ(answer.code, 0x1010000U);
    EXPECT_EQ(answer.text, "Error 0x1010000");
    EXPECT_THAT(m_infos, ElementsAre("one", "", "two"));
}

TEST_F(BinaryClientTest, AnswersAStatusRequest) {
    EXPECT_EQ(
        execute({sent(kStatusRequest), arrives(statusFrame()), sent(kAcknowledgement)}, status()).text,
        kStatusText);
    EXPECT_THAT(m_infos, IsEmpty());
}

TEST_F(BinaryClientTest, TakesAStartupStatusThatCameBefore) {
    const Answer answer = execute({arrives(statusFrame(true)), sent(kAcknowledgement),
                                   sent(kStatusRequest), arrives(statusFrame()), sent(kAcknowledgement)},
                                  status());
    EXPECT_EQ(answer.text, kStatusText);
    EXPECT_THAT(m_infos, ElementsAre(kStartup));
}

TEST_F(BinaryClientTest, TakesAStartupStatusWithItsPrelude) {
    execute(
        {arrives(kPrelude.substr(0, 10)), arrives(kPrelude.substr(10)), arrives(statusFrame()),
         sent(kAcknowledgement), sent(kStatusRequest), arrives(statusFrame()), sent(kAcknowledgement)},
        status());
    EXPECT_THAT(m_infos, ElementsAre(kPreludeTexts[0], kPreludeTexts[1], kStartup));
}

TEST_F(BinaryClientTest, DropsALateAnswerThatCameBefore) {
    const Answer answer = execute({arrives(kExecRefusal), sent(kAcknowledgement), sent(kExecRequest),
                                   arrives(kExecAnswer), sent(kAcknowledgement)},
                                  exec());
    EXPECT_EQ(answer.text, "hi\n");
    EXPECT_THAT(m_infos, ElementsAre("station: dropped an answer to an earlier command: "
                                     "hex(08 63 01 00 01 01 00 00)"));
}

TEST_F(BinaryClientTest, DropsHalfAFrameThatCameBefore) {
    const Answer answer = execute(
        {arrives("\x18s,"), kSilence, sent(kExecRequest), arrives(kExecAnswer), sent(kAcknowledgement)},
        exec());
    EXPECT_EQ(answer.text, "hi\n");
    EXPECT_THAT(m_infos, ElementsAre(kDropped));
}

TEST_F(BinaryClientTest, DropsGarbageThatCameBefore) {
    const Answer answer = execute({arrives("\x01garbage"), arrives(debugFrame("text")),
                                   sent(kExecRequest), arrives(kExecAnswer), sent(kAcknowledgement)},
                                  exec());
    EXPECT_EQ(answer.text, "hi\n");
    EXPECT_THAT(m_infos, ElementsAre(kDropped, "text"));
}

TEST_F(BinaryClientTest, TellsAStartupStatusFromTheAnswerToAnotherCommand) {
    for (const bool isFirst : {true, false}) {
        m_infos.clear();
        const Answer answer = execute({sent(kExecRequest), arrives(statusFrame(isFirst) + kExecAnswer),
                                       sent(kAcknowledgement), sent(kAcknowledgement)},
                                      exec());
        EXPECT_EQ(answer.text, "hi\n");
        EXPECT_THAT(m_infos, ElementsAre(kStartup));
    }
    const Answer file =
        execute({sent("\x03s\x01"), arrives(statusFrame()), sent(kAcknowledgement),
                 arrives(framed(std::string("s\x01\0\0\0\0\0text", 11))), sent(kAcknowledgement)},
                BinaryRequest::encode("status", {"01"}));
    EXPECT_EQ(file.text, "text");
}

TEST_F(BinaryClientTest, TellsTheFirstStatusFromTheAnswerToAStatusRequest) {
    const Answer answer =
        execute({sent(kStatusRequest), arrives(statusFrame(true)), sent(kAcknowledgement),
                 arrives(statusFrame()), sent(kAcknowledgement)},
                status());
    EXPECT_EQ(answer.text, kStatusText);
    EXPECT_THAT(m_infos, ElementsAre(kStartup));
}

TEST_F(BinaryClientTest, TellsAStatusWithAPreludeFromTheAnswerToAStatusRequest) {
    execute({sent(kStatusRequest), arrives(kPrelude + statusFrame()), sent(kAcknowledgement),
             arrives(statusFrame()), sent(kAcknowledgement)},
            status());
    EXPECT_THAT(m_infos, ElementsAre(kPreludeTexts[0], kPreludeTexts[1], kStartup));
}

TEST_F(BinaryClientTest, TakesAPreludeForOneOnlyDirectlyBeforeTheStatus) {
    for (const std::string& texts :
         {kPrelude + debugFrame("other"), debugFrame(kPreludeTexts[0]), debugFrame(kPreludeTexts[1]),
          debugFrame(kPreludeTexts[1]) + debugFrame(kPreludeTexts[0])})
        EXPECT_EQ(execute({sent(kStatusRequest), arrives(texts + statusFrame()), sent(kAcknowledgement)},
                          status())
                      .text,
                  kStatusText);
}

TEST_F(BinaryClientTest, TellsThatAnAnnouncementMayHaveCostTheRequest) {
    expectFailure({sent(kStatusRequest), arrives(statusFrame(true)), sent(kAcknowledgement)}, status(),
                  Failure::Kind::TimedOut, "the unit opened its port after the request was sent");
    EXPECT_THAT(m_infos, ElementsAre(kStartup));
}

TEST_F(BinaryClientTest, TimesOutWithoutAnAnswer) {
    expectFailure({sent(kExecRequest), arrives(debugFrame("almost")), arrives(kExecAnswer.substr(0, 9))},
                  exec(), Failure::Kind::TimedOut, "time-out while waiting for the answer");
    EXPECT_THAT(m_infos, ElementsAre("almost"));
}

TEST_F(BinaryClientTest, FailsOnAnAnswerToAnotherCommand) {
    expectFailure({sent(kStatusRequest), arrives(kExecAnswer), sent(kAcknowledgement)}, status(),
                  Failure::Kind::MalformedAnswer,
                  "expected one to hex(02 73): hex(0B 63 01 00 00 00 00 00 68 69 0A)");
}

TEST_F(BinaryClientTest, FailsOnAMalformedFrameWithoutWaitingForMore) {
    expectFailure({sent(kExecRequest), arrives(std::string(1, '\0'))}, exec(),
                  Failure::Kind::MalformedAnswer, "a frame of 0 bytes");
}

TEST_F(BinaryClientTest, FailsWhenTheLineHangsUp) {
    constexpr char kHungUp[] = "hung up the line before the answer was complete";
    expectFailure({kHangUp}, exec(), Failure::Kind::ConnectionLost, kHungUp);
    expectFailure({sent(kExecRequest), kHangUp}, exec(), Failure::Kind::ConnectionLost, kHungUp);
    expectFailure({sent(kExecRequest), arrives(kExecAnswer.substr(0, 4)), kHangUp}, exec(),
                  Failure::Kind::ConnectionLost, kHungUp);
}

TEST_F(BinaryClientTest, NeedsNoAnswerToAck) {
    const Answer answer =
        execute({sent("\x02\x06"), arrives(debugFrame("text"))}, BinaryRequest::encode("ack", {}));
    EXPECT_EQ(answer.text, "");
    EXPECT_EQ(answer.code, 0U);
    EXPECT_THAT(m_infos, ElementsAre("text"));
}

TEST_F(BinaryClientTest, TakesARefusalOfAck) {
    const std::string refusal = framed(std::string("\x06\0\0\x01\x01\0\0", 7));
    EXPECT_EQ(execute({sent("\x02\x06"), arrives(refusal), sent(kAcknowledgement)},
                      BinaryRequest::encode("ack", {}))
                  .code,
              0x1010000U);
}

TEST_F(BinaryClientTest, RunsCommandsOneAfterTheOther) {
    PlayedLink link({sent(kStatusRequest), arrives(statusFrame()), sent(kAcknowledgement),
                     sent(kExecRequest), arrives(kExecAnswer), sent(kAcknowledgement)});
    BinaryClient client(link, observer());
    EXPECT_EQ(client.execute(status(), patient()).text, kStatusText);
    EXPECT_EQ(client.execute(exec(), patient()).text, "hi\n");
    EXPECT_THAT(m_infos, IsEmpty());
}

TEST_F(BinaryClientTest, WaitsForTheStartupStatus) {
    PlayedLink link({arrives("\xF0noise"), kSilence, arrives(debugFrame("text") + kExecRefusal),
                     sent(kAcknowledgement), arrives(statusFrame(true)), sent(kAcknowledgement),
                     sent(kExecRequest), arrives(kExecAnswer), sent(kAcknowledgement)});
    BinaryClient client(link, observer());
    client.waitForStartup(patient());
    EXPECT_EQ(client.execute(exec(), patient()).text, "hi\n");
    EXPECT_THAT(m_infos, ElementsAre(kDropped, "text",
                                     "station: dropped an answer to an earlier command: "
                                     "hex(08 63 01 00 01 01 00 00)",
                                     kStartup));
}

TEST_F(BinaryClientTest, TimesOutWithoutAStartupStatus) {
    PlayedLink link({arrives(debugFrame("text"))});
    BinaryClient client(link, observer());
    EXPECT_THAT(failureOf([&] { client.waitForStartup(patient()); }),
                FailsWith(Failure::Kind::TimedOut, "time-out while waiting for the startup status"));
}

TEST_F(BinaryClientTest, GivesUpOnALineThatNeverFallsSilent) {
    class Chatter : public Link {
    public:
        void send(std::string_view, const Deadline&) override {}
        std::optional<std::string> receiveBy(const Deadline&) override { return debugFrame("x"); }
    } link;
    BinaryClient client(link, {[](const std::string&) {}});
    EXPECT_THAT(failureOf([&] { client.execute(exec(), Deadline::after(Seconds(0.05))); }),
                FailsWith(Failure::Kind::TimedOut, "time-out while waiting for the answer"));
}

TEST_F(BinaryClientTest, ShowsEveryFrameThatComesForRawBytes) {
    const std::string refusal = framed(std::string("x\0\0\x01\x01\0\0", 7));
    const Answer answer = execute({sent(std::string("\x04x\0\0", 4)), arrives(debugFrame("no")),
                                   arrives(refusal), sent(kAcknowledgement), arrives(statusFrame()),
                                   sent(kAcknowledgement), arrives(debugFrame("end"))},
                                  BinaryRequest::raw({"hex(04 78 00 00)"}));
    EXPECT_EQ(answer.code, 0U) << "of the last answer";
    EXPECT_EQ(answer.text, "");
    EXPECT_EQ(answer.payload, statusFrame().substr(8));
    EXPECT_THAT(m_frames,
                ElementsAre("04646E6F", hexDigits(refusal), hexDigits(statusFrame()), "0564656E64"));
    EXPECT_THAT(m_infos, ElementsAre("no", "end"));
}

TEST_F(BinaryClientTest, TellsARefusalOfRawBytes) {
    const std::string refusal = framed(std::string("\0\0\0\x01\x01\0\0", 7));
    EXPECT_EQ(execute({sent("\x01"), arrives(refusal), sent(kAcknowledgement)},
                      BinaryRequest::raw({"hex(01)"}))
                  .text,
              "Error 0x1010000");
}

TEST_F(BinaryClientTest, WaitsForAnAnswerToRawBytesUnlessTheyAreAnAck) {
    expectFailure({sent("\x03s"), arrives(debugFrame("x"))}, BinaryRequest::raw({"hex(03 73)"}),
                  Failure::Kind::TimedOut, "time-out while waiting for the answer");
    EXPECT_EQ(
        execute({sent(kAcknowledgement), arrives(debugFrame("x"))}, BinaryRequest::raw({"hex(02 06)"}))
            .code,
        0U);
}

} // namespace
} // namespace station
