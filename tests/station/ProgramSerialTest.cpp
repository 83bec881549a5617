#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "FakeLine.h"
#include "FakeUnit.h"
#include "ProgramRuns.h"
#include "client/SerialLink.h"

namespace station {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kExec[] = "exec command 5 ls";
const std::string kExecRequest = std::string("\x07\x63\x01\0\x05ls", 7);
const std::string kExecOpening = std::string("\x63\x01\0\0\0\0\0", 7);
const std::string kRefusal = framed(std::string("\x63\x01\0\x01\x01\0\0", 7));

Outcome runOn(const FakeLine& line, const std::string& arguments) {
    return runStationAt(line.target().text(), words(arguments));
}

/// Runs the program against a unit that takes one request, sends `reply` and takes one acknowledgement.
Outcome exchange(const std::string& request, const std::string& reply, const std::string& arguments) {
    const FakeLine line;
    Outcome outcome;
    {
        const LineScript unit([&] {
            EXPECT_EQ(line.receive(request.size()), request);
            line.send(reply);
            EXPECT_EQ(line.receive(kAcknowledgement.size()), kAcknowledgement);
        });
        outcome = runOn(line, arguments);
    }
    EXPECT_EQ(line.receiveRest(), "") << "more was sent than the request and one acknowledgement";
    return outcome;
}

class ProgramOverBinaryLine : public testing::TestWithParam<ProgramRun> {};

TEST_P(ProgramOverBinaryLine, IsAnswered) {
    const ProgramRun& run = GetParam();
    expectOutcome(exchange(run.request, run.reply, run.arguments), run);
}

const std::string kReadRequest = std::string("\x08t\0\x02\0\0\x01\0", 8);
const std::string kReadOpening = std::string("t\0\x02\0\0\0\0", 7);

const ProgramRun kRuns[] = {
    {"PrintsAStatus", "status", "\x02s", statusFrame(), 0, std::string(kStatusText) + "\n", ""},
    {"PrintsAFile", "status 02", "\x03s\x02", framed(std::string("s\x02\0\0\0\0\0", 7) + "0323"), 0,
     "0323\n", ""},
    {"PrintsTextAsItIs", kExec, kExecRequest, framed(kExecOpening + "a\nb\n"), 0, "a\nb\n", ""},
    {"PrintsNothingForNoText", kExec, kExecRequest, framed(kExecOpening), 0, "", ""},
    {"PrintsOtherBytesAsHex", kExec, kExecRequest, framed(kExecOpening + "\xFF\n"), 0, "hex(FF 0A)\n",
     ""},
    {"TellsARefusalAndTheDebugTexts", "--protocol binary exec command 5 ls", kExecRequest,
     debugFrame("two\nlines") + debugFrame("b") + kRefusal, 5, "",
     "Info \"two\nlines\"\nInfo \"b\"\nstation: refused: Error 0x1010000\n"},
    {"TellsAPayloadThatCannotBe", "memory read 8bit 2 0x100", kReadRequest,
     framed(kReadOpening + "\x01"), 6, "",
     "station: malformed answer: expected a payload of 2 bytes, and not 1: hex(01)\n"},
    {"TellsAnAnswerToAnotherCommand", "status", "\x02s", kRefusal, 6, "",
     StartsWith("station: malformed answer: expected one to hex(02 73)")},
    {"PrintsEachFrameThatComesForRawBytes", "raw 'hex(05 78 01)'", "\x05x\x01",
     debugFrame("no") + kRefusal, 5, "hex(04 64 6E 6F)\nhex(08 63 01 00 01 01 00 00)\n",
     "Info \"no\"\nstation: refused: Error 0x1010000\n"},
    {"PrintsTheFrameThatAnswersRawBytes", "raw hex(037301)", "\x03s\x01", framed(kExecOpening + "a"), 0,
     "hex(09 63 01 00 00 00 00 00 61)\n", ""},
};

INSTANTIATE_TEST_SUITE_P(Runs, ProgramOverBinaryLine, testing::ValuesIn(kRuns), titleOf);

TEST(ProgramSerialJson, PrintsTheBytesOfAReadAsTheAsciiFormDoes) {
    const Outcome outcome =
        exchange(kReadRequest, framed(kReadOpening + "\x01\xFF"), "--json memory read 8bit 2 0x100");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    const json object = json::parse(outcome.output);
    EXPECT_EQ(object["answer"], "hex(01FF)");
    EXPECT_EQ(object["payload"], "01FF");
}

TEST(ProgramSerialJson, TellsAWrongChecksum) {
    const Outcome outcome = exchange(std::string("\x0Dt\x07\x02\0\0\x01\0\0\0\x09\x01\x02", 13),
                                     framed(std::string("t\x07\x02\x08\0\x04\0\0\0\x03", 10)),
                                     "--json memory write 8bitcrc 2 0x100 'hex(01 02)' 9");
    EXPECT_EQ(outcome.exitCode, 5);
    const json object = json::parse(outcome.output);
    EXPECT_EQ(object["answer"], "Error 0x8000400");
    EXPECT_EQ(object["code"], 0x08000400);
    EXPECT_EQ(object["payload"], "000003");
}

TEST(ProgramSerial, SendsAckWithoutAnAnswer) {
    const FakeLine line;
    const Outcome outcome = runOn(line, "ack");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(line.receiveRest(), kAcknowledgement);
}

TEST(ProgramSerial, TakesAnAnnouncementThatCameBefore) {
    const FakeLine line;
    line.send(statusFrame(true));
    Outcome outcome;
    {
        const LineScript unit([&] {
            EXPECT_EQ(line.receive(kAcknowledgement.size()), kAcknowledgement);
            EXPECT_EQ(line.receive(2), "\x02s");
            line.send(statusFrame());
            EXPECT_EQ(line.receive(kAcknowledgement.size()), kAcknowledgement);
        });
        outcome = runOn(line, "status");
    }
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, std::string(kStatusText) + "\n");
    EXPECT_EQ(outcome.errors, "Info \"startup status " + std::string(kStatusText) + "\"\n");
}

TEST(ProgramSerial, WaitsForTheAnnouncementWhenTold) {
    const FakeLine line;
    Outcome outcome;
    {
        const LineScript unit([&] {
            line.waitForStation();
            line.sendByteByByte(statusFrame(true));
            EXPECT_EQ(line.receive(kAcknowledgement.size()), kAcknowledgement);
            EXPECT_EQ(line.receive(kExecRequest.size()), kExecRequest);
            line.send(framed(kExecOpening + "text"));
            EXPECT_EQ(line.receive(kAcknowledgement.size()), kAcknowledgement);
        });
        outcome = runOn(line, "--wait-startup exec command 5 ls");
    }
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.output, "text\n");
}

TEST(ProgramSerial, TellsThatNoAnnouncementCame) {
    const FakeLine line;
    const Outcome outcome = runOn(line, "--timeout 0.2 --wait-startup status");
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.errors, "station: time-out while waiting for the startup status\n");
    EXPECT_EQ(line.receiveRest(), "");
}

TEST(ProgramSerial, TellsATimeout) {
    const FakeLine line;
    const Outcome outcome = runOn(line, "--timeout 0.2 status");
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "station: time-out while waiting for the answer\n");
    EXPECT_EQ(line.receiveRest(), "\x02s");
}

TEST(ProgramSerial, TellsALineThatHangsUp) {
    FakeLine line;
    const LineScript unit([&] {
        EXPECT_EQ(line.receive(2), "\x02s");
        line.send(debugFrame("text").substr(0, 3));
        line.hangUp();
    });
    const Outcome outcome = runOn(line, "status");
    EXPECT_EQ(outcome.exitCode, 6);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "station: the unit hung up the line before the answer was complete\n");
}

TEST(ProgramSerial, TellsAMalformedFrame) {
    const FakeLine line;
    const LineScript unit([&] {
        EXPECT_EQ(line.receive(2), "\x02s");
        line.send("\x01");
    });
    const Outcome outcome = runOn(line, "status");
    EXPECT_EQ(outcome.exitCode, 6);
    EXPECT_THAT(outcome.errors, HasSubstr("a frame of 1 bytes"));
}

TEST(ProgramSerial, TellsThatAnotherStationIsThere) {
    const FakeLine line;
    const SerialLink other = SerialLink::open(line.target());
    const Outcome outcome = runOn(line, "status");
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.errors,
              "station: cannot connect to " + line.target().text() + ": in use by another station\n");
}

TEST(ProgramSerial, TellsThatThePathIsNoTerminal) {
    const Outcome outcome = runStation({{"--target", "serial:/dev/null", "status"}});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.errors, "station: cannot connect to serial:/dev/null: not a terminal\n");
    EXPECT_EQ(runStation({{"--target", "serial:/no/such/line", "status"}}).exitCode, 3);
}

TEST(ProgramSerialJson, PrintsOneObject) {
    const Outcome outcome = exchange(kExecRequest, debugFrame("text") + framed(kExecOpening + "\xFFz"),
                                     "--json exec command 5 ls");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    json object = json::parse(outcome.output);
    EXPECT_GT(object["milliseconds"].get<double>(), 0);
    object.erase("milliseconds");
    EXPECT_EQ(object, json({{"name", "exec"},
                            {"answer", "hex(FF 7A)"},
                            {"info", {"text"}},
                            {"code", 0},
                            {"payload", "FF7A"}}));
}

TEST(ProgramSerialJson, ShowsARefusal) {
    const json object = json::parse(exchange(kExecRequest, kRefusal, "--json exec command 5 ls").output);
    EXPECT_EQ(object["answer"], "Error 0x1010000");
    EXPECT_EQ(object["code"], 0x1010000);
    EXPECT_EQ(object["payload"], "");
    EXPECT_FALSE(object.contains("error"));
}

TEST(ProgramSerialJson, ShowsEachFrameThatComesForRawBytes) {
    const json object = json::parse(exchange("\x03s\x01", debugFrame("no") + framed(kExecOpening + "a"),
                                             "--json raw 'hex(03 73 01)'")
                                        .output);
    EXPECT_EQ(object["name"], "raw");
    EXPECT_EQ(object["answer"], "hex(04 64 6E 6F)\nhex(09 63 01 00 00 00 00 00 61)");
    EXPECT_EQ(object["info"], json({"no"}));
    EXPECT_EQ(object["payload"], "61");
}

TEST(ProgramSerialJson, ShowsWhyThereIsNoAnswer) {
    const FakeLine line;
    const Outcome outcome = runOn(line, "--json --timeout 0.2 status");
    EXPECT_EQ(outcome.exitCode, 4);
    const json object = json::parse(outcome.output);
    EXPECT_THAT(object["error"].get<std::string>(), HasSubstr("time-out"));
    EXPECT_TRUE(object["answer"].is_null());
}

TEST(ProgramSerial, TakesDefaultsFromTheEnvironment) {
    const FakeLine line;
    Outcome outcome;
    {
        const LineScript unit([&] {
            EXPECT_EQ(line.receive(9), "\x02status\x03\n");
            line.send(answer("status ok"));
        });
        outcome = runStation(
            {{"status"}, {{"STATION_TARGET", line.target().text()}, {"STATION_PROTOCOL", "ascii"}}});
    }
    EXPECT_EQ(outcome.output, "ok\n") << outcome.errors;

    const Outcome preferred =
        runStation({{"--target", line.target().text(), "--protocol", "binary", "ack"},
                    {{"STATION_TARGET", "nowhere"}, {"STATION_PROTOCOL", "ascii"}}});
    EXPECT_EQ(preferred.exitCode, 0) << preferred.errors;
    EXPECT_EQ(line.receiveRest(), kAcknowledgement);
}

class ProgramSerialMisuse : public testing::TestWithParam<Misuse> {};

TEST_P(ProgramSerialMisuse, IsToldBeforeAnythingIsSent) {
    const FakeLine line;
    expectMisuse(runOn(line, GetParam().arguments), GetParam().message);
    EXPECT_EQ(line.receiveRest(), "");
}

const Misuse kMisuses[] = {
    {"--protocol morse status", "invalid protocol 'morse'"},
    {"--timeout 0 status", "invalid time-out '0'"},
    {"status 03", "status 03 has no binary form"},
    {"exec command 5 " + std::string(251, 'a'), "the text has 251 bytes"},
    {"exec command -1 ls", "0 to 65535 seconds"},
    {"foo read", "'foo' has no binary form here"},
    {"i2c write 0 0x50 hex(00)", "DATA has to begin with 50"},
    {"memory read 8bit 256 0", "COUNT has to be a number"},
    {"raw", "raw takes the bytes of one frame"},
    {"raw 0273", "raw takes the bytes of one frame"},
    {"--protocol ascii raw 'hex(02 73)'", "raw needs the binary protocol"},
    {"--protocol ascii --wait-startup status", "--wait-startup needs the binary protocol"},
    {"--protocol ascii exec a\"b", "double quotation mark"},
};

INSTANTIATE_TEST_SUITE_P(Arguments, ProgramSerialMisuse, testing::ValuesIn(kMisuses));

} // namespace
} // namespace station
