#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeLine.h"
#include "FakeUnit.h"
#include "ProgramRuns.h"

namespace station {
namespace {

using testing::HasSubstr;

constexpr char kGreeting[] = "Info Production Test Server (Build 2026/11/21 09:03:24)";
constexpr char kShownGreeting[] = "Info \"Production Test Server (Build 2026/11/21 09:03:24)\"\n";

Outcome runOn(const FakeLine& line, const std::string& arguments) {
    return runStationAt(line.target().text(), words("--protocol ascii " + arguments));
}

/// Runs the program against a unit that takes one request and sends `reply`, all in ASCII.
Outcome exchange(const FakeLine& line, const std::string& request, const std::string& reply,
                 const std::string& arguments) {
    const LineScript unit([&] {
        EXPECT_EQ(line.receive(request.size()), request);
        line.send(reply);
    });
    return runOn(line, arguments);
}

class ProgramOverAsciiLine : public testing::TestWithParam<ProgramRun> {};

TEST_P(ProgramOverAsciiLine, IsAnswered) {
    const FakeLine line;
    const ProgramRun& run = GetParam();
    expectOutcome(exchange(line, run.request, run.reply, run.arguments), run);
    EXPECT_EQ(line.receiveRest(), "") << "more was sent than the request";
}

const ProgramRun kRuns[] = {
    {"PrintsTheAnswer", "status 03", request("status 03"),
     answer("Info \"text\"") + answer("status base64(QQ==)"), 0, "base64(QQ==)\n", "Info \"text\"\n"},
    {"TellsARefusal", "status 05", request("status 05"), answer("status Error 0x1010000"), 5, "",
     "station: refused: Error 0x1010000\n"},
    {"TakesAGreetingThatComesAfterTheCommand", "status", request("status"),
     answer(kGreeting) + answer("status ok"), 0, "ok\n", kShownGreeting},
};

INSTANTIATE_TEST_SUITE_P(Runs, ProgramOverAsciiLine, testing::ValuesIn(kRuns), titleOf);

TEST(ProgramSerialAscii, TakesWhatCameBeforeTheCommand) {
    const FakeLine line;
    line.send("half a line\x03\n");
    const Outcome garbage = exchange(line, request("status"), answer("status new"), "status");
    EXPECT_EQ(garbage.exitCode, 0);
    EXPECT_EQ(garbage.output, "new\n");
    EXPECT_THAT(garbage.errors, HasSubstr("dropped what had arrived before the command"));

    line.send(answer(kGreeting) + answer("status old"));
    const Outcome outcome = exchange(line, request("status"), answer("status new"), "status");
    EXPECT_EQ(outcome.output, "new\n");
    EXPECT_EQ(outcome.errors,
              std::string(kShownGreeting) +
                  "Info \"station: dropped an answer to an earlier command: status old\"\n");
}

TEST(ProgramSerialAscii, SendsAckWithoutAnAnswer) {
    const FakeLine line;
    const Outcome outcome = runOn(line, "ack");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(line.receiveRest(), request("ack"));
}

TEST(ProgramSerialAscii, TellsATimeout) {
    const FakeLine line;
    const Outcome outcome = runOn(line, "--timeout 0.2 status");
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.errors, "station: time-out while waiting for the answer\n");
}

} // namespace
} // namespace station
