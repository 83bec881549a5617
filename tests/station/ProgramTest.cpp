#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <nlohmann/json.hpp>

#include "FakeUnit.h"
#include "StationProcess.h"
#include "wire/Descriptor.h"

namespace station {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kUnused[] = "tcp:127.0.0.1:9";

/// Reads one request and answers it with the given texts.
FakeUnit::Script answering(std::vector<std::string> texts, std::string* request = nullptr) {
    return [texts = std::move(texts), request](UnitConnection& connection) {
        const std::string received = connection.readRequest();
        if (request != nullptr)
            *request = received;
        for (const std::string& text : texts)
            connection.sendText(text);
    };
}

Outcome runAgainst(const FakeUnit& unit, const std::vector<std::string>& arguments) {
    return runStationAt(unit.target().text(), arguments);
}

/// The bytes that arrive at the unit when the program is run with these arguments.
std::string requestOf(const std::vector<std::string>& arguments) {
    std::string request;
    {
        FakeUnit unit(answering({""}, &request));
        const Outcome outcome = runAgainst(unit, arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    }
    return request;
}

TEST(Program, PrintsTheAnswerWithoutTheName) {
    FakeUnit unit(answering({"status \"2026/11/21 08:37:25\" A024 \"1A\" 4"}));
    const Outcome outcome = runAgainst(unit, {"status"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, "\"2026/11/21 08:37:25\" A024 \"1A\" 4\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(Program, PrintsNothingForAnEmptyAnswer) {
    FakeUnit unit(answering({""}));
    const Outcome outcome = runAgainst(unit, {"ack"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "");
}

TEST(Program, KeepsInfoLinesApartFromTheAnswer) {
    FakeUnit unit(answering({"Info \"two\nlines\"", "Info \"a \"quoted\" word\"", "exec text"}));
    const Outcome outcome = runAgainst(unit, {"exec"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, "text\n");
    EXPECT_EQ(outcome.errors, "Info \"two\nlines\"\nInfo \"a \"quoted\" word\"\n");
}

TEST(Program, TellsARefusal) {
    FakeUnit unit(answering({"Info \"No Handler for the Command nosuch\"", "Error Error 0x10"}));
    const Outcome outcome = runAgainst(unit, {"nosuch"});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "Info \"No Handler for the Command nosuch\"\nstation: refused: Error 0x10\n");
}

TEST(Program, TellsThatItCannotConnect) {
    const BoundSocket silent;
    const Outcome outcome = runStation({{"--target", silent.target().text(), "status"}});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "station: cannot connect to " + silent.target().text() + ": Connection refused\n");
}

TEST(Program, TellsATimeout) {
    FakeUnit unit([](UnitConnection& connection) { connection.waitUntilStationCloses(); });
    const Outcome outcome = runAgainst(unit, {"--timeout", "0.2", "status"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "station: time-out while waiting for the answer\n");
}

TEST(Program, TellsAnAnswerThatEndsHalfWay) {
    FakeUnit unit([](UnitConnection& connection) {
        connection.readRequest();
        connection.send("\x02#status o");
    });
    const Outcome outcome = runAgainst(unit, {"status"});
    EXPECT_EQ(outcome.exitCode, 6);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr("closed the connection before the answer was complete"));
}

TEST(Program, TellsAMalformedAnswer) {
    FakeUnit unit(answering({"audio ok"}));
    const Outcome outcome = runAgainst(unit, {"status"});
    EXPECT_EQ(outcome.exitCode, 6);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "station: malformed answer: expected one to 'status': audio ok\n");
}

struct Misuse {
    std::vector<std::string> arguments;
    std::string message;

    friend void PrintTo(const Misuse& row, std::ostream* out) {
        *out << testing::PrintToString(row.arguments);
    }
};

class ProgramMisuse : public testing::TestWithParam<Misuse> {};

TEST_P(ProgramMisuse, IsTold) {
    const Outcome outcome = runStation({GetParam().arguments});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("station: "));
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, ProgramMisuse,
    testing::Values(
        Misuse{{}, "the NAME of a command is missing"},
        Misuse{{"--json"}, "the NAME of a command is missing"},
        Misuse{{"--"}, "the NAME of a command is missing"},
        Misuse{{"-x", "status"}, "unknown option -x"},
        Misuse{{"--jsn", "status"}, "unknown option --jsn"}, Misuse{{"--target"}, "--target"},
        Misuse{{"--target", "unit:1", "status"}, "invalid target 'unit:1'"},
        Misuse{{"--timeout", "soon", "status"}, "invalid time-out 'soon'"},
        Misuse{{"--timeout", "0", "status"}, "invalid time-out '0'"},
        Misuse{{"--timeout=-1", "status"}, "invalid time-out '-1'"},
        Misuse{{"--timeout", "inf", "status"}, "invalid time-out 'inf'"},
        Misuse{{""}, "invalid command name ''"}, Misuse{{"/bin/ls"}, "invalid command name '/bin/ls'"},
        Misuse{{"exec", ""}, "an empty argument cannot be sent"},
        Misuse{{"exec", "a\"b"}, "send its bytes as base64(...)"},
        Misuse{{"exec", "a\nb"}, "send its bytes as base64(...)"},
        Misuse{{"exec", "hex(zz)"}, "only hex digits"}, Misuse{{"serial", "terminal"}, "CHANNEL"},
        Misuse{{"serial", "terminal", "240"}, "invalid channel '240'"},
        Misuse{{"--json", "serial", "terminal", "1"}, "no JSON"},
        Misuse{{"--timeout", "soon", "serial", "terminal", "1"}, "invalid time-out"}));

struct Sent {
    std::vector<std::string> arguments;
    std::string request;

    friend void PrintTo(const Sent& row, std::ostream* out) {
        *out << testing::PrintToString(row.arguments);
    }
};

class ProgramSends : public testing::TestWithParam<Sent> {};

TEST_P(ProgramSends, Request) {
    EXPECT_EQ(requestOf(GetParam().arguments), GetParam().request);
}

INSTANTIATE_TEST_SUITE_P(Arguments, ProgramSends,
                         testing::Values(Sent{{"ack"},
                                              "\x02"
                                              "ack\x03\n"},
                                         Sent{{"--", "ack"},
                                              "\x02"
                                              "ack\x03\n"},
                                         Sent{{"--json", "ack", "x"},
                                              "\x02"
                                              "ack x\x03\n"},
                                         Sent{{"ack", "command", "-1", "ls"},
                                              "\x02"
                                              "ack command \"-1\" ls\x03\n"},
                                         Sent{{"ack", "hex(01 02)", "base64(QQ==)"},
                                              "\x02"
                                              "ack hex(01 02) base64(QQ==)\x03\n"},
                                         // Options of the program end at the name.
                                         Sent{{"ack", "--json"},
                                              "\x02"
                                              "ack \"--json\"\x03\n"},
                                         Sent{{"ack", "-x", "--target", kUnused},
                                              "\x02"
                                              "ack \"-x\" \"--target\" \"tcp:127.0.0.1:9\"\x03\n"},
                                         Sent{{"ack", "--help"},
                                              "\x02"
                                              "ack \"--help\"\x03\n"},
                                         Sent{{"serial", "open", "1", "115200", "0x0F"},
                                              "\x02"
                                              "serial open 1 115200 0x0F\x03\n"},
                                         Sent{{"serial", "send", "1", "hex(41 54 0D)"},
                                              "\x02"
                                              "serial send 1 hex(41 54 0D)\x03\n"},
                                         Sent{{"serial", "getall", "1"},
                                              "\x02"
                                              "serial getall 1\x03\n"},
                                         Sent{{"graphic", "display", "0", "1"},
                                              "\x02"
                                              "graphic display 0 1\x03\n"},
                                         Sent{{"graphic", "capture", "3", "0"},
                                              "\x02"
                                              "graphic capture 3 0\x03\n"},
                                         Sent{{"ack", "a", "--", "b"},
                                              "\x02"
                                              "ack a \"--\" b\x03\n"},
                                         Sent{{"ack", "[1,2]", "a b"},
                                              "\x02"
                                              "ack \"[1,2]\" \"a b\"\x03\n"}));

TEST(Program, TakesDefaultsFromTheEnvironment) {
    FakeUnit unit([](UnitConnection& connection) { connection.waitUntilStationCloses(); });
    const Outcome outcome =
        runStation({{"status"}, {"STATION_TARGET=" + unit.target().text(), "STATION_TIMEOUT=0.2"}});
    EXPECT_EQ(outcome.exitCode, 4) << outcome.errors;
}

TEST(Program, PrefersOptionsToTheEnvironment) {
    FakeUnit unit(answering({"audio ok"}));
    const Outcome outcome = runStation({{"--target", unit.target().text(), "--timeout", "30", "audio"},
                                        {"STATION_TARGET=nowhere", "STATION_TIMEOUT=never"}});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
}

TEST(Program, ChecksTheEnvironmentLikeOptions) {
    const Outcome target = runStation({{"status"}, {"STATION_TARGET=nowhere"}});
    EXPECT_EQ(target.exitCode, 2);
    EXPECT_THAT(target.errors, HasSubstr("invalid target 'nowhere'"));
    const Outcome timeout = runStation({{"status"}, {"STATION_TIMEOUT=never"}});
    EXPECT_EQ(timeout.exitCode, 2);
    EXPECT_THAT(timeout.errors, HasSubstr("invalid time-out 'never'"));
}

TEST(Program, TakesAnEmptyVariableAsNone) {
    const Outcome outcome =
        runStation({{"--target", kUnused, "exec", "a\"b"}, {"STATION_TARGET=", "STATION_TIMEOUT="}});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("double quotation mark"));
}

TEST(ProgramJson, PrintsOneObject) {
    FakeUnit unit(answering({"Info \"two\nlines\"", "Info \"a \"quoted\" word\"", "status \"x\" 4"}));
    const Outcome outcome = runAgainst(unit, {"--json", "status"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output.find('\n'), outcome.output.size() - 1);
    json object = json::parse(outcome.output);
    EXPECT_GT(object["milliseconds"].get<double>(), 0);
    object.erase("milliseconds");
    EXPECT_EQ(object, json({{"name", "status"},
                            {"answer", "\"x\" 4"},
                            {"info", {"two\nlines", "a \"quoted\" word"}},
                            {"code", 0}}));
}

TEST(ProgramJson, ShowsARefusal) {
    FakeUnit unit(answering({"Info \"Invalid subcommand\"", "diag Error 0x1010000"}));
    const Outcome outcome = runAgainst(unit, {"--json", "diag"});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(outcome.errors, "");
    const json object = json::parse(outcome.output);
    EXPECT_EQ(object["answer"], "Error 0x1010000");
    EXPECT_EQ(object["code"], 0x1010000);
    EXPECT_EQ(object["info"], json({"Invalid subcommand"}));
    EXPECT_FALSE(object.contains("error"));
}

TEST(ProgramJson, ReplacesBytesThatAreNotUtf8) {
    FakeUnit unit(answering({"Info \"\xFF\"", "exec \xC3(\xE2\x82\xAC"}));
    const Outcome outcome = runAgainst(unit, {"--json", "exec"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    const json object = json::parse(outcome.output);
    EXPECT_EQ(object["answer"], "\xEF\xBF\xBD(\xE2\x82\xAC");
    EXPECT_EQ(object["info"], json({"\xEF\xBF\xBD"}));
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

    FakeUnit mute([](UnitConnection& connection) { connection.waitUntilStationCloses(); });
    expectErrorObject(runAgainst(mute, {"--json", "--timeout", "0.2", "status"}), 4, "time-out");
}

TEST(ProgramJson, ShowsTheInfoLinesOfAnIncompleteAnswer) {
    FakeUnit unit(answering({"Info \"almost\""}));
    const Outcome outcome = runAgainst(unit, {"--json", "status"});
    expectErrorObject(outcome, 6, "before the answer was complete");
    EXPECT_EQ(json::parse(outcome.output)["info"], json({"almost"}));
}

TEST(Program, PrintsItsVersion) {
    const Outcome outcome = runStation({{"--version"}});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, "station " STATION_VERSION "\n");
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
                             "STATION_TARGET=tcp:127.0.0.1:15052 STATION_TIMEOUT=5 station status"})
        EXPECT_THAT(outcome.output, HasSubstr(part));
}

TEST(Program, TellsThatItCannotWriteTheAnswer) {
    const System::Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    FakeUnit unit(answering({"audio ok"}));
    const Outcome outcome = runStation({{"--target", unit.target().text(), "audio"}, {}, full.get()});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "station: cannot write to standard output\n");
}

TEST(Program, TellsThatItCannotWriteTheHelp) {
    const System::Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(runStation({{"--help"}, {}, full.get()}).exitCode, 1);
}

TEST(Program, SurvivesAReaderThatHasGone) {
    std::array<int, 2> ends = {};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    System::Descriptor readEnd(ends[0]);
    const System::Descriptor writeEnd(ends[1]);
    readEnd.reset();
    FakeUnit unit(answering({"audio ok"}));
    const Outcome outcome =
        runStation({{"--target", unit.target().text(), "audio"}, {}, writeEnd.get()});
    EXPECT_EQ(outcome.exitCode, 1);
}

} // namespace
} // namespace station
