#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeLine.h"
#include "ProgramRuns.h"
#include "client/SerialLink.h"
#include "support/Lines.h"

namespace station {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr char kExec[] = "exec command 5 ls";
const std::string kExecRequest = std::string("\x07\x63\x01\0\x05ls", 7);
const std::string kExecOpening = std::string("\x63\x01\0\0\0\0\0", 7);
const std::string kRefusal = framed(std::string("\x63\x01\0\x01\x01\0\0", 7));

Outcome runOn(const FakeLine& line, const std::string& arguments) {
    return runStationAt(line.target().text(), words(arguments));
}

class ProgramOnALine : public testing::TestWithParam<ProgramRun> {};

TEST_P(ProgramOnALine, Is) {
    FakeLine line;
    {
        const LineScript unit(line, GetParam().steps);
        expectOutcome(runOn(line, GetParam().arguments), GetParam());
    }
    const bool isUp = line.descriptor() >= 0;
    EXPECT_EQ(isUp ? line.receiveRest() : "", "") << "more was sent than there is in the script";
}

/// A request, what comes back, and that this is acknowledged.
Steps answered(const std::string& request, const std::string& reply) {
    return sent(request) + arrives(reply) + sent(kAcknowledgement);
}

const std::string kReadRequest = std::string("\x08t\0\x02\0\0\x01\0", 8);
const std::string kReadOpening = std::string("t\0\x02\0\0\0\0", 7);
const std::string kStatusLine = std::string(kStatusText) + "\n";
const std::string kStartupLine = "Info \"startup status " + std::string(kStatusText) + "\"\n";
constexpr char kLate[] = "station: time-out while waiting for the answer\n";

const ProgramRun kBinary[] = {
    {"AnsweredWithAStatus", "status", answered("\x02s", statusFrame()), 0, kStatusLine, ""},
    {"AnsweredWithAFile", "status 02",
     answered("\x03s\x02", framed(std::string("s\x02\0\0\0\0\0", 7) + "0323")), 0, "0323\n", ""},
    {"AnsweredWithText", kExec, answered(kExecRequest, framed(kExecOpening + "a\nb\n")), 0, "a\nb\n",
     ""},
    {"AnsweredWithNoText", kExec, answered(kExecRequest, framed(kExecOpening)), 0, "", ""},
    {"AnsweredWithOtherBytes", kExec, answered(kExecRequest, framed(kExecOpening + "\xFF\n")), 0,
     "hex(FF 0A)\n", ""},
    {"RefusedWithDebugTexts", "--protocol binary exec command 5 ls",
     answered(kExecRequest, debugFrame("two\nlines") + debugFrame("b") + kRefusal), 5, "",
     "Info \"two\nlines\"\nInfo \"b\"\nstation: refused: Error 0x1010000\n"},
    {"AnsweredWithAPayloadThatCannotBe", "memory read 8bit 2 0x100",
     answered(kReadRequest, framed(kReadOpening + "\x01")), 6, "",
     "station: malformed answer: expected a payload of 2 bytes, and not 1: hex(01)\n"},
    {"AnsweredToAnotherCommand", "status", answered("\x02s", kRefusal), 6, "",
     StartsWith("station: malformed answer: expected one to hex(02 73)")},
    {"AnsweredToRawBytesWithSeveralFrames", "raw 'hex(05 78 01)'",
     answered("\x05x\x01", debugFrame("no") + kRefusal), 5,
     "hex(04 64 6E 6F)\nhex(08 63 01 00 01 01 00 00)\n",
     "Info \"no\"\nstation: refused: Error 0x1010000\n"},
    {"AnsweredToRawBytes", "raw hex(037301)", answered("\x03s\x01", framed(kExecOpening + "a")), 0,
     "hex(09 63 01 00 00 00 00 00 61)\n", ""},
    {"NotAnsweredToAck", "ack", sent(kAcknowledgement), 0, "", ""},
    {"AnnouncedBefore", "status",
     arrives(statusFrame(true)) + sent(kAcknowledgement) + answered("\x02s", statusFrame()), 0,
     kStatusLine, kStartupLine},
    {"AnnouncedWhenToldToWait", "--wait-startup exec command 5 ls",
     kOpened + arrivesByteByByte(statusFrame(true)) + sent(kAcknowledgement) +
         answered(kExecRequest, framed(kExecOpening + "text")),
     0, "text\n", kStartupLine},
    {"NotAnnounced",
     "--timeout 0.2 --wait-startup status",
     {},
     4,
     "",
     "station: time-out while waiting for the startup status\n"},
    {"NotAnswered", "--timeout 0.2 status", sent("\x02s"), 4, "", kLate},
    {"HungUp", "status", sent("\x02s") + arrives(debugFrame("text").substr(0, 3)) + kHangUp, 6, "",
     "station: the unit hung up the line before the answer was complete\n"},
    {"AnsweredWithAMalformedFrame", "status", sent("\x02s") + arrives("\x01"), 6, "",
     HasSubstr("a frame of 1 bytes")},
};

INSTANTIATE_TEST_SUITE_P(Binary, ProgramOnALine, testing::ValuesIn(kBinary), titleOf);

const ProgramRun kJson[] = {
    {"AnsweredWithBytesAsTheAsciiFormIs", "--json memory read 8bit 2 0x100",
     answered(kReadRequest, framed(kReadOpening + "\x01\xFF")), 0,
     object("memory", "hex(01FF)", kNoInfo, 0, "01FF"), ""},
    {"RefusedForAWrongChecksum", "--json memory write 8bitcrc 2 0x100 'hex(01 02)' 9",
     answered(std::string("\x0Dt\x07\x02\0\0\x01\0\0\0\x09\x01\x02", 13),
              framed(std::string("t\x07\x02\x08\0\x04\0\0\0\x03", 10))),
     5, object("memory", "Error 0x8000400", kNoInfo, 0x08000400, "000003"), ""},
    {"AnsweredWithADebugText", "--json exec command 5 ls",
     answered(kExecRequest, debugFrame("text") + framed(kExecOpening + "\xFFz")), 0,
     object("exec", "hex(FF 7A)", {"text"}, 0, "FF7A"), ""},
    {"Refused", "--json exec command 5 ls", answered(kExecRequest, kRefusal), 5,
     object("exec", "Error 0x1010000", kNoInfo, 0x1010000, ""), ""},
    {"AnsweredToRawBytes", "--json raw 'hex(03 73 01)'",
     answered("\x03s\x01", debugFrame("no") + framed(kExecOpening + "a")), 0,
     object("raw", "hex(04 64 6E 6F)\nhex(09 63 01 00 00 00 00 00 61)", {"no"}, 0, "61"), ""},
    {"NotAnswered", "--json --timeout 0.2 status", sent("\x02s"), 4,
     IsObject(nlohmann::json{{"name", "status"},
                             {"answer", nullptr},
                             {"info", kNoInfo},
                             {"code", nullptr},
                             {"error", "time-out while waiting for the answer"}}),
     ""},
};

INSTANTIATE_TEST_SUITE_P(Json, ProgramOnALine, testing::ValuesIn(kJson), titleOf);

constexpr char kGreeting[] = "Info Production Test Server (Build 2026/11/21 09:03:24)";
const std::string kShownGreeting = "Info \"Production Test Server (Build 2026/11/21 09:03:24)\"\n";

const ProgramRun kAscii[] = {
    {"Answered", "--protocol ascii status 03",
     sent(request("status 03")) + arrives(answer("Info \"text\"") + answer("status base64(QQ==)")), 0,
     "base64(QQ==)\n", "Info \"text\"\n"},
    {"Refused", "--protocol ascii status 05",
     sent(request("status 05")) + arrives(answer("status Error 0x1010000")), 5, "",
     "station: refused: Error 0x1010000\n"},
    {"GreetedBehindTheCommand", "--protocol ascii status",
     sent(request("status")) + arrives(answer(kGreeting) + answer("status ok")), 0, "ok\n",
     kShownGreeting},
    {"AnsweredBehindHalfALine", "--protocol ascii status",
     arrives("half a line\x03\n") + sent(request("status")) + arrives(answer("status new")), 0, "new\n",
     HasSubstr("dropped what had arrived before the command")},
    {"AnsweredBehindAnOldAnswer", "--protocol ascii status",
     arrives(answer(kGreeting) + answer("status old")) + sent(request("status")) +
         arrives(answer("status new")),
     0, "new\n",
     kShownGreeting + "Info \"station: dropped an answer to an earlier command: status old\"\n"},
    {"NotAnsweredToAck", "--protocol ascii ack", sent(request("ack")), 0, "", ""},
    {"NotAnswered", "--protocol ascii --timeout 0.2 status", sent(request("status")), 4, "", kLate},
};

INSTANTIATE_TEST_SUITE_P(Ascii, ProgramOnALine, testing::ValuesIn(kAscii), titleOf);

TEST(ProgramSerial, TellsThatAnotherStationIsThere) {
    const FakeLine line;
    const SerialLink other = SerialLink::open(line.target());
    const std::string message =
        "station: cannot connect to " + line.target().text() + ": in use by another station\n";
    EXPECT_EQ(runOn(line, "status"), (Outcome{3, "", message}));
}

TEST(ProgramSerial, TellsThatThePathIsNoTerminal) {
    EXPECT_EQ(runStationAt("serial:/dev/null", {"status"}),
              (Outcome{3, "", "station: cannot connect to serial:/dev/null: not a terminal\n"}));
    EXPECT_EQ(runStationAt("serial:/no/such/line", {"status"}).exitCode, 3);
}

TEST(ProgramSerial, TakesDefaultsFromTheEnvironment) {
    FakeLine line;
    {
        const LineScript unit(line, sent(request("status")) + arrives(answer("status ok")));
        EXPECT_EQ(
            runStation(
                {{"status"}, {{"STATION_TARGET", line.target().text()}, {"STATION_PROTOCOL", "ascii"}}}),
            (Outcome{0, "ok\n", ""}));
    }
    EXPECT_EQ(runStation({{"--target", line.target().text(), "--protocol", "binary", "ack"},
                          {{"STATION_TARGET", "nowhere"}, {"STATION_PROTOCOL", "ascii"}}}),
              (Outcome{0, "", ""}));
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
