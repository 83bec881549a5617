#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AsciiDaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

constexpr char kSerialRequest[] = "\x02status 02\x03\n";
constexpr char kSerialAnswer[] = "\x02#status base64(MDEyMw==)\x03\n";

class AsciiLineTest : public AsciiDaemonTest {
protected:
    AsciiLineTest() { writeFile(kSerialNumberFile, "0123"); }
};

TEST_F(AsciiLineTest, GreetsOnceForEachOpening) {
    EXPECT_TRUE(adapter.isSilentFor(kSilence));
    expectExchange(adapter, kSerialRequest, kSerialAnswer);
    expectExchange(adapter, kSerialRequest, kSerialAnswer);
    for (int opening = 0; opening < 3; ++opening) {
        adapter.pull();
        adapter.plug();
        expectBanner();
        EXPECT_TRUE(adapter.isSilentFor(kSilence));
        expectExchange(adapter, kSerialRequest, kSerialAnswer);
    }
}

struct Exchange {
    const char* name;
    std::string sent;
    std::string received;
};

const Exchange kExchanges[] = {
    {"image version", request("status 01"), answer("status base64(aW1hZ2U=)")},
    {"serial number", request("status 02"), answer("status base64(MDEyMw==)")},
    {"application version", request("status 03"), answer("status base64(YXBw)")},
    {"no such status", request("status 05"), failure("status", "unsupported subcommand")},
    {"exec", request("exec command 60 \"echo hi\""), answer("exec base64(aGkK)")},
    {"exec without output", request("exec command 60 true"), answer("exec base64()")},
    {"exec with too little", request("exec command"),
     failure("exec", "Command execute was called with 2 parameters must have 4 parameters")},
    {"exec of something else", request("exec something 60 true"),
     failure("exec", "Unsupported exec subcommand ")},
    {"exec that is killed", request("exec command 1 \"echo seen; sleep 1000\""),
     failure("exec", "Process echo seen; sleep 1000 was killed after timeout\nstdout+err:\nseen\n\n")},
    {"unknown", request("s"), unknown("s")},
    {"unknown with arguments", request("foo 1 \"two\" hex(03)"), unknown("foo")},
    {"ack is not answered", request("ack"), ""},
    {"ack with an argument is not answered", request("ack 1"), ""},
    {"a second STX starts over", "\x02one\x02two\x03\n", unknown("two")},
    {"noise before STX", "hello, #1 \x7F\xFF world\x02one\x03\n", unknown("one")},
    {"NUL ends the text of a line", "\x02on\0e\x03\n"s, unknown("on")},
};

TEST_F(AsciiLineTest, AnswersEachCommandWithItsLines) {
    writeFile(kImageVersionFile, "image");
    writeFile(kApplicationVersionFile, "app");
    for (const Exchange& exchange : kExchanges) {
        SCOPED_TRACE(exchange.name);
        expectExchange(adapter, exchange.sent, exchange.received);
        expectNothingMore(adapter);
    }
}

TEST_F(AsciiLineTest, AnswersAStatus) {
    expectExchange(adapter, request("status"),
                   answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4"));
}

TEST_F(AsciiLineTest, LeavesTheLineSilentForAnEmptyAnswer) {
    adapter.send(request("ack"));
    EXPECT_TRUE(adapter.isSilentFor(kSilence));
}

TEST_F(AsciiLineTest, PutsALineTogetherThatWasSplitAnywhere) {
    const std::string whole = request("foo \"1\" 2");
    for (std::size_t at = 0; at <= whole.size(); ++at) {
        SCOPED_TRACE(at);
        adapter.send(whole.substr(0, at));
        adapter.waitUntilTaken();
        expectExchange(adapter, whole.substr(at), unknown("foo"));
    }
}

TEST_F(AsciiLineTest, PutsALineTogetherFromSingleBytes) {
    for (const char byte : request("foo")) {
        adapter.send({&byte, 1});
        adapter.waitUntilTaken();
    }
    expectExchange(adapter, "", unknown("foo"));
}

struct Unfinished {
    const char* name;
    std::string start; ///< not answered
    std::string rest;  ///< makes it complete
    std::string received;
};

const Unfinished kUnfinished[] = {
    {"a text alone", "\x02one", "\x03\n", unknown("one")},
    {"a line feed alone", "\x02one\n", "\x03\n", unknown("one")},
    {"ETX alone", "\x02one\x03", "\n", unknown("one")},
    {"line feed and ETX", "\x02one\n\x03", "\n", unknown("one")},
    {"ETX, carriage return, line feed", "\x02one\x03\r\n", "\x03\n", unknown("one")},
    {"ETX, noise, line feed", "\x02one\x03.\n", "\x03\n", unknown("one")},
    {"text behind ETX", "\x02one\x03two", "\x03\n", unknown("one")},
    {"only a line feed", "\n", request("one"), unknown("one")},
    {"only an ETX", "\x03", "\n\x02one\x03\n", unknown("nothingMore") + unknown("one")},
    {"a web request's head", "GET / HTTP/1.1\r\nHost: unit\r\n\r\n", request("one"), unknown("one")},
    {"a web form", "POST /form HTTP/1.0\r\nContent-Length: 1\r\n\r\nx", request("one"), unknown("one")},
};

TEST_F(AsciiLineTest, HoldsWhatDoesNotEndInEtxAndLineFeed) {
    for (const Unfinished& line : kUnfinished) {
        SCOPED_TRACE(line.name);
        expectNothingMore(adapter);
        adapter.send(line.start);
        adapter.waitUntilTaken();
        EXPECT_TRUE(adapter.isSilentFor(kSilence));
        expectExchange(adapter, line.rest, line.received);
        expectNothingMore(adapter);
    }
}

TEST_F(AsciiLineTest, AnswersEachOfTwoLinesThatComeAtOnce) {
    expectExchange(adapter, request("one") + request("two"), unknown("one") + unknown("two"));
}

TEST_F(AsciiLineTest, KeepsWhatFollowsALineForTheNextOne) {
    expectExchange(adapter, request("one") + "\x02tw", unknown("one"));
    EXPECT_TRUE(adapter.isSilentFor(kSilence));
    expectExchange(adapter, "o\x03\n", unknown("two"));
}

TEST_F(AsciiLineTest, AnswersManyLinesThatComeAtOnce) {
    std::string sent;
    std::string received;
    for (int number = 0; number < 200; ++number) {
        const std::string name = "line" + std::to_string(number);
        sent += request(name);
        received += unknown(name);
    }
    expectExchange(adapter, sent, received);
}

TEST_F(AsciiLineTest, ComplainsOnStandardOutputOfALineWithoutCommandAtStart) {
    adapter.send("noise\x03\n");
    EXPECT_TRUE(eventually([this] { return daemon.output() == "command fehler\n"; })) << daemon.output();
    EXPECT_TRUE(adapter.isSilentFor(kSilence));
}

TEST_F(AsciiLineTest, RepeatsTheCommandBeforeALineWithoutCommand) {
    expectExchange(adapter, request("mine"), unknown("mine"));
    expectExchange(adapter, "noise\x03\n", unknown("mine"));
    Connection other;
    expectExchange(other, request("others"), unknown("others"));
    expectExchange(adapter, "noise\x03\n", unknown("others"));
    expectExchange(other, "noise\x03\n", unknown("others"));
}

/// All but those that mean something in a quoted string or to a shell's comment.
std::string everyOtherByte() {
    std::string bytes;
    for (int byte = 0x01; byte <= 0xFF; ++byte)
        if (byte != 0x02 && byte != 0x03 && byte != '\n' && byte != '"')
            bytes += static_cast<char>(byte);
    return bytes;
}

TEST_F(AsciiLineTest, CarriesEveryByteBothWays) {
    const std::string text = "sleep 1000 # " + everyOtherByte();
    expectExchange(adapter, request("exec command 1 \"" + text + "\""),
                   failure("exec", "Process " + text + " was killed after timeout\nstdout+err:\n\n"));
}

} // namespace
