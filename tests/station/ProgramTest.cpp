// As long as the tables of requests, of wrong arguments and of what the help shows.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "FakeUnit.h"
#include "ProgramRuns.h"
#include "support/Pipe.h"
#include "wire/Descriptor.h"

namespace station {
namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr char kUnused[] = "tcp:127.0.0.1:9";

Outcome runAgainst(const FakeUnit& unit, const std::string& arguments) {
    return runStationAt(unit.target().text(), words(arguments));
}

class ProgramOverTcp : public testing::TestWithParam<ProgramRun> {};

TEST_P(ProgramOverTcp, Is) {
    const FakeUnit unit(GetParam().steps);
    expectOutcome(runAgainst(unit, GetParam().arguments), GetParam());
}

const ProgramRun kRuns[] = {
    {"AnsweredWithoutTheName", "status",
     sent(request("status")) + arrives(answer("status \"2026/11/21 08:37:25\" A024 \"1A\" 4")), 0,
     "\"2026/11/21 08:37:25\" A024 \"1A\" 4\n", ""},
    {"AnsweredWithAnEmptyLine", "ack", sent(request("ack")) + arrives(answer("")), 0, "", ""},
    {"AnsweredWithInfoLines", "exec",
     sent(request("exec")) + arrives(answer("Info \"two\nlines\"") +
                                     answer("Info \"a \"quoted\" word\"") + answer("exec text")),
     0, "text\n", "Info \"two\nlines\"\nInfo \"a \"quoted\" word\"\n"},
    {"Refused", "nosuch", sent(request("nosuch")) + arrives(unknown("nosuch")), 5, "",
     "Info \"No Handler for the Command nosuch\"\nstation: refused: Error 0x10\n"},
    {"AnsweredHalfWay", "status", sent(request("status")) + arrives("\x02#status o"), 6, "",
     HasSubstr("closed the connection before the answer was complete")},
    {"AnsweredToAnotherCommand", "status", sent(request("status")) + arrives(answer("audio ok")), 6, "",
     "station: malformed answer: expected one to 'status': audio ok\n"},
    {"NotAnswered", "--timeout 0.2 status", kSilence, 4, "",
     "station: time-out while waiting for the answer\n"},
};

INSTANTIATE_TEST_SUITE_P(Runs, ProgramOverTcp, testing::ValuesIn(kRuns), titleOf);

const ProgramRun kJsonRuns[] = {
    {"AnsweredWithInfoLines", "--json status",
     sent(request("status")) + arrives(answer("Info \"two\nlines\"") +
                                       answer("Info \"a \"quoted\" word\"") + answer("status \"x\" 4")),
     0, object("status", "\"x\" 4", {"two\nlines", "a \"quoted\" word"}, 0), ""},
    {"Refused", "--json diag",
     sent(request("diag")) +
         arrives(answer("Info \"Invalid subcommand\"") + answer("diag Error 0x1010000")),
     5, object("diag", "Error 0x1010000", {"Invalid subcommand"}, 0x1010000), ""},
    {"AnsweredWithBytesThatAreNotUtf8", "--json exec",
     sent(request("exec")) + arrives(answer("Info \"\xFF\"") + answer("exec \xC3(\xE2\x82\xAC")), 0,
     object("exec", "\xEF\xBF\xBD(\xE2\x82\xAC", {"\xEF\xBF\xBD"}, 0), ""},
};

INSTANTIATE_TEST_SUITE_P(Json, ProgramOverTcp, testing::ValuesIn(kJsonRuns), titleOf);

TEST(Program, TellsThatItCannotConnect) {
    const BoundSocket silent;
    const std::string target = silent.target().text();
    EXPECT_EQ(runStationAt(target, {"status"}),
              (Outcome{3, "", "station: cannot connect to " + target + ": Connection refused\n"}));
}

class ProgramMisuse : public testing::TestWithParam<Misuse> {};

TEST_P(ProgramMisuse, IsTold) {
    expectMisuse(runStation({words(GetParam().arguments)}), GetParam().message);
}

const Misuse kMisuses[] = {
    {"", "the NAME of a command is missing"},
    {"--json", "the NAME of a command is missing"},
    {"--", "the NAME of a command is missing"},
    {"-x status", "unknown option -x"},
    {"--jsn status", "unknown option --jsn"},
    {"--target", "--target"},
    {"--target unit:1 status", "invalid target 'unit:1'"},
    {"--timeout soon status", "invalid time-out 'soon'"},
    {"--timeout 0 status", "invalid time-out '0'"},
    {"--timeout=-1 status", "invalid time-out '-1'"},
    {"--timeout inf status", "invalid time-out 'inf'"},
    {"''", "invalid command name ''"},
    {"/bin/ls", "invalid command name '/bin/ls'"},
    {"exec ''", "an empty argument cannot be sent"},
    {"exec a\"b", "send its bytes as base64(...)"},
    {"exec a\nb", "send its bytes as base64(...)"},
    {"exec hex(zz)", "only hex digits"},
    {"serial terminal", "CHANNEL"},
    {"serial terminal 240", "invalid channel '240'"},
    {"--json serial terminal 1", "no JSON"},
    {"--timeout soon serial terminal 1", "invalid time-out"},
    {"--protocol binary status", "the binary protocol needs a serial line"},
    {"--protocol Ascii status", "invalid protocol 'Ascii'"},
    {"raw 'hex(02 73)'", "raw needs the binary protocol"},
    {"--wait-startup status", "--wait-startup needs the binary protocol"},
};

INSTANTIATE_TEST_SUITE_P(Arguments, ProgramMisuse, testing::ValuesIn(kMisuses));

struct Sent {
    std::string arguments;
    std::string text;

    friend void PrintTo(const Sent& row, std::ostream* out) { *out << row.arguments; }
};

class ProgramSends : public testing::TestWithParam<Sent> {};

TEST_P(ProgramSends, Request) {
    const FakeUnit unit(sent("\x02" + GetParam().text + "\x03\n") + arrives(answer("")));
    const Outcome outcome = runAgainst(unit, GetParam().arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
}

const Sent kSent[] = {
    {"ack", "ack"},
    {"-- ack", "ack"},
    {"--json ack x", "ack x"},
    {"ack command -1 ls", "ack command \"-1\" ls"},
    {"ack 'hex(01 02)' base64(QQ==)", "ack hex(01 02) base64(QQ==)"},
    // Options of the program end at the name.
    {"ack --json", "ack \"--json\""},
    {"ack -x --target tcp:127.0.0.1:9", "ack \"-x\" \"--target\" \"tcp:127.0.0.1:9\""},
    {"ack --help", "ack \"--help\""},
    {"serial open 1 115200 0x0F", "serial open 1 115200 0x0F"},
    {"serial send 1 'hex(41 54 0D)'", "serial send 1 hex(41 54 0D)"},
    {"serial getall 1", "serial getall 1"},
    {"graphic display 0 1", "graphic display 0 1"},
    {"graphic capture 3 0", "graphic capture 3 0"},
    {"ack a -- b", "ack a \"--\" b"},
    {"ack [1,2] 'a b'", "ack \"[1,2]\" \"a b\""},
};

INSTANTIATE_TEST_SUITE_P(Arguments, ProgramSends, testing::ValuesIn(kSent));

TEST(Program, TakesDefaultsFromTheEnvironment) {
    const FakeUnit unit(kSilence);
    EXPECT_EQ(
        runStation({{"status"}, {{"STATION_TARGET", unit.target().text()}, {"STATION_TIMEOUT", "0.2"}}}),
        (Outcome{4, "", "station: time-out while waiting for the answer\n"}));
}

TEST(Program, PrefersOptionsToTheEnvironment) {
    const FakeUnit unit(sent(request("audio")) + arrives(answer("audio ok")));
    EXPECT_EQ(runStation({{"--target", unit.target().text(), "--timeout", "30", "audio"},
                          {{"STATION_TARGET", "nowhere"}, {"STATION_TIMEOUT", "never"}}}),
              (Outcome{0, "ok\n", ""}));
}

TEST(Program, ChecksTheEnvironmentLikeOptions) {
    expectMisuse(runStation({{"status"}, {{"STATION_TARGET", "nowhere"}}}), "invalid target 'nowhere'");
    expectMisuse(runStation({{"status"}, {{"STATION_TIMEOUT", "never"}}}), "invalid time-out 'never'");
    expectMisuse(runStation({{"status"}, {{"STATION_PROTOCOL", "binary"}}}),
                 "the binary protocol needs a serial line");
}

TEST(Program, TakesAnEmptyVariableAsNone) {
    expectMisuse(runStation({{"--target", kUnused, "exec", "a\"b"},
                             {{"STATION_TARGET", ""}, {"STATION_TIMEOUT", ""}}}),
                 "double quotation mark");
}

void expectErrorObject(const Outcome& outcome, int exitCode, const std::string& error) {
    EXPECT_EQ(outcome.exitCode, exitCode);
    EXPECT_EQ(outcome.errors, "");
    const json object = json::parse(outcome.output);
    EXPECT_THAT(object["error"].get<std::string>(), HasSubstr(error));
    EXPECT_TRUE(object.contains("name") && object.contains("info") && object.contains("milliseconds"));
    EXPECT_TRUE(object["answer"].is_null());
    EXPECT_TRUE(object["code"].is_null());
}

TEST(ProgramJson, ShowsWhyThereIsNoAnswer) {
    expectErrorObject(runStation({{"--json", "--target", "nowhere", "status"}}), 2, "invalid target");
    expectErrorObject(runStation({{"--json", "exec", "a\"b\xFF"}}), 2, "double quotation mark");

    const BoundSocket silent;
    expectErrorObject(runStation({{"--json", "--target", silent.target().text(), "status"}}), 3,
                      "Connection refused");

    const FakeUnit mute(kSilence);
    expectErrorObject(runAgainst(mute, "--json --timeout 0.2 status"), 4, "time-out");
}

TEST(ProgramJson, ShowsTheInfoLinesOfAnIncompleteAnswer) {
    const FakeUnit unit(sent(request("status")) + arrives(answer("Info \"almost\"")));
    const Outcome outcome = runAgainst(unit, "--json status");
    expectErrorObject(outcome, 6, "before the answer was complete");
    EXPECT_EQ(json::parse(outcome.output)["info"], json({"almost"}));
}

TEST(Program, PrintsItsVersion) {
    EXPECT_EQ(runStation({{"--version"}}), (Outcome{0, "station " STATION_VERSION "\n", ""}));
}

TEST(Program, HelpsWithAnExampleForEachForm) {
    const Outcome outcome = runStation({{"--help"}});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    for (const char* part : {"station [--target TARGET] [--protocol binary|ascii] [--timeout SECONDS]",
                             "[--wait-startup] [--json] [--progress auto|bar|plain|none]",
                             "NAME [ARG...]",
                             "station status 03",
                             "station memory upload FILE --at 0x1000",
                             "station blockdev flash sd 1 FILE --at 16",
                             "station exec command -1 \"ls -l /dev\"",
                             "\"hex(00 1F)\"",
                             "\"base64(AB8K)\"",
                             "station --target tcp:unit.example:15051 status",
                             "station --target tcp:[::1]:15051 status",
                             "station --timeout 2.5 status",
                             "station --json status",
                             "station memory write WIDTH COUNT ADDRESS DATA\n",
                             "station diag cksum TYPE OFFSET LENGTH\n",
                             "station port read N\n",
                             "station i2c read BUS COUNT ADDRESS [DATA]\n",
                             "station blockdev open TYPE ID\n",
                             "station audio activate",
                             "station serial send N DATA\n",
                             "station serial send 241 \"hex(01 03 0C 00)\"",
                             "station serial terminal 1",
                             "station graphic display OUTPUT PICTURE\n",
                             "station graphic capture INPUT OUTPUT\n",
                             "STATION_TARGET=tcp:127.0.0.1:15052 STATION_TIMEOUT=5 station status",
                             "station --target serial:/dev/ttyUSB0 status",
                             "station --target serial:/dev/ttyUSB0 exec command 5 \"ls /dev\"",
                             "station --target serial:/dev/ttyUSB0 ack",
                             "station --target serial:/dev/ttyUSB0 --wait-startup status",
                             "station --target serial:/dev/ttyUSB0 raw \"hex(03 73 01)\"",
                             "station --target serial:/dev/ttyUSB0 --protocol ascii status 03",
                             "STATION_TARGET=serial:/dev/ttyUSB0 STATION_PROTOCOL=ascii station status",
                             "200 ms",
                             "Every command has a binary form. status 03 and status 04 have none"})
        EXPECT_THAT(outcome.output, HasSubstr(part));
}

TEST(Program, TellsThatItCannotWriteTheAnswer) {
    const System::Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    const FakeUnit unit(sent(request("audio")) + arrives(answer("audio ok")));
    EXPECT_EQ(runStation({{"--target", unit.target().text(), "audio"}, {}, full.get()}),
              (Outcome{1, "", "station: cannot write to standard output\n"}));
}

TEST(Program, TellsThatItCannotWriteTheHelp) {
    const System::Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(runStation({{"--help"}, {}, full.get()}).exitCode, 1);
}

TEST(Program, SurvivesAReaderThatHasGone) {
    Pipe pipe;
    pipe.readEnd.reset();
    const FakeUnit unit(sent(request("audio")) + arrives(answer("audio ok")));
    EXPECT_EQ(
        runStation({{"--target", unit.target().text(), "audio"}, {}, pipe.writeEnd.get()}).exitCode, 1);
}

} // namespace
} // namespace station
