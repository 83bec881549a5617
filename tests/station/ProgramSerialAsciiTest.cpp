#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeLine.h"
#include "FakeUnit.h"
#include "StationProcess.h"

namespace station {
namespace {

using testing::HasSubstr;

Outcome runOn(const FakeLine& line, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--protocol", "ascii"});
    return runStationAt(line.target().text(), arguments);
}

/// Runs the program against a unit that takes one request and sends `reply`, all in ASCII.
Outcome exchange(const std::string& request, const std::string& reply,
                 const std::vector<std::string>& arguments) {
    const FakeLine line;
    Outcome outcome;
    {
        const LineScript unit([&] {
            EXPECT_EQ(line.receive(request.size()), request);
            line.send(reply);
        });
        outcome = runOn(line, arguments);
    }
    EXPECT_EQ(line.receiveRest(), "") << "more was sent than the request";
    return outcome;
}

TEST(ProgramSerialAscii, PrintsTheAnswer) {
    const Outcome outcome =
        exchange("\x02status 03\x03\n", answer("Info \"text\"") + answer("status base64(QQ==)"),
                 {"status", "03"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, "base64(QQ==)\n");
    EXPECT_EQ(outcome.errors, "Info \"text\"\n");
}

TEST(ProgramSerialAscii, TellsARefusal) {
    const Outcome outcome =
        exchange("\x02status 05\x03\n", answer("status Error 0x1010000"), {"status", "05"});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(outcome.errors, "station: refused: Error 0x1010000\n");
}

constexpr char kGreeting[] = "Info Production Test Server (Build 2026/11/21 09:03:24)";
constexpr char kShownGreeting[] = "Info \"Production Test Server (Build 2026/11/21 09:03:24)\"\n";

TEST(ProgramSerialAscii, TakesAGreetingThatComesAfterTheCommand) {
    const Outcome outcome =
        exchange("\x02status\x03\n", answer(kGreeting) + answer("status ok"), {"status"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, "ok\n");
    EXPECT_EQ(outcome.errors, kShownGreeting);
}

TEST(ProgramSerialAscii, TakesWhatCameBeforeTheCommand) {
    const FakeLine line;
    line.send("half a line\x03\n");
    Outcome garbage;
    {
        const LineScript unit([&] {
            EXPECT_EQ(line.receive(9), "\x02status\x03\n");
            line.send(answer("status new"));
        });
        garbage = runOn(line, {"status"});
    }
    EXPECT_EQ(garbage.exitCode, 0);
    EXPECT_EQ(garbage.output, "new\n");
    EXPECT_THAT(garbage.errors, HasSubstr("dropped what had arrived before the command"));

    line.send(answer(kGreeting) + answer("status old"));
    Outcome outcome;
    {
        const LineScript unit([&] {
            EXPECT_EQ(line.receive(9), "\x02status\x03\n");
            line.send(answer("status new"));
        });
        outcome = runOn(line, {"status"});
    }
    EXPECT_EQ(outcome.output, "new\n");
    EXPECT_EQ(outcome.errors,
              std::string(kShownGreeting) +
                  "Info \"station: dropped an answer to an earlier command: status old\"\n");
}

TEST(ProgramSerialAscii, SendsAckWithoutAnAnswer) {
    const FakeLine line;
    const Outcome outcome = runOn(line, {"ack"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(line.receiveRest(),
              "\x02"
              "ack\x03\n");
}

TEST(ProgramSerialAscii, TellsATimeout) {
    const FakeLine line;
    const Outcome outcome = runOn(line, {"--timeout", "0.2", "status"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.errors, "station: time-out while waiting for the answer\n");
}

} // namespace
} // namespace station
