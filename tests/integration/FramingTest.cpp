#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"

namespace {

using namespace std::string_literals;

constexpr std::size_t kReadBytes = 4096;
constexpr char kSerialRequest[] = "\x02status 02\x03\n";
constexpr char kSerialAnswer[] = "\x02#status base64(MDEyMw==)\x03\n";

class FramingTest : public DaemonTest {
protected:
    FramingTest() { writeFile(kSerialNumberFile, "0123"); }
};

struct Segments {
    const char* name;
    std::vector<std::string> sent; ///< each is read by the daemon before the next one is sent
    std::string received;
};

/// A line of exactly so many bytes with a name of letters, and that name.
std::string nameForLineOf(std::size_t bytes) {
    return std::string(bytes - 3, 'a');
}

const Segments kSegments[] = {
    {"one line", {"\x02one\x03\n"}, unknown("one")},
    {"a line feed alone ends nothing", {"\x02one\n", "\x03\n"}, unknown("one")},
    {"a line feed inside splits words", {"\x02on\n", "e\x03\n"}, unknown("on")},
    {"ETX alone ends nothing", {"\x02one\x03", "\n"}, unknown("one")},
    {"ETX, noise, LF ends nothing", {"\x02one\x03.\n", "\x03\n"}, unknown("one")},
    {"STX alone", {"\x02", "one\x03\n"}, unknown("one")},
    {"a lone line feed first", {"\n", "\x02one\x03\n"}, unknown("one")},
    {"two in one segment: the first", {"\x02one\x03\n\x02two\x03\n"}, unknown("one")},
    {"three in one segment: the first", {"\x02one\x03\n\x02two\x03\n\x02three\x03\n"}, unknown("one")},
    {"one and a half, then the rest: the first", {"\x02one\x03\n\x02tw", "o\x03\n"}, unknown("one")},
    {"text after ETX", {"\x02one\x03 two\x03\n"}, unknown("one")},
    {"a line after ETX", {"\x02one\x03\ntwo\x03\n"}, unknown("one")},
    {"a second STX starts over", {"\x02one\x02two\x03\n"}, unknown("two")},
    {"noise before STX", {"hello, #1 \x7F\xFF world\x02one\x03\n"}, unknown("one")},
    {"NUL ends the text of a line", {"\x02on\0e\x03\n"s}, unknown("on")},
    {"NUL behind the line's ETX", {"\x02one\x03\0\x03\n"s}, unknown("one")},
    {"longer than a read",
     {"\x02" + std::string(3 * kReadBytes, 'a') + "\x03\n"},
     unknown(std::string(3 * kReadBytes, 'a'))},
    {"a read ends on the line's end: two commands",
     {"\x02" + nameForLineOf(kReadBytes) + "\x03\n\x02two\x03\n"},
     unknown(nameForLineOf(kReadBytes)) + unknown("two")},
    {"a read ends one byte past the line's end: the first",
     {"\x02" + nameForLineOf(kReadBytes - 1) + "\x03\n\x02two\x03\n"},
     unknown(nameForLineOf(kReadBytes - 1))},
    {"a read ends one byte before the line's end: the first",
     {"\x02" + nameForLineOf(kReadBytes + 1) + "\x03\n\x02two\x03\n"},
     unknown(nameForLineOf(kReadBytes + 1))},
};

TEST_F(FramingTest, PutsLinesTogetherFromSegments) {
    for (const Segments& row : kSegments) {
        SCOPED_TRACE(row.name);
        Connection station;
        for (std::size_t at = 0; at + 1 < row.sent.size(); ++at) {
            station.send(row.sent[at]);
            station.waitUntilTaken();
        }
        expectExchange(station, row.sent.back(), row.received);
        expectNothingMore(station);
    }
}

TEST_F(FramingTest, TakesALineSplitAtAnyByte) {
    const std::string line = kSerialRequest;
    Connection station;
    for (std::size_t at = 1; at < line.size(); ++at) {
        SCOPED_TRACE(at);
        station.send(line.substr(0, at));
        station.waitUntilTaken();
        expectExchange(station, line.substr(at), kSerialAnswer);
    }
    expectNothingMore(station);
}

TEST_F(FramingTest, TakesALineByteByByteWithoutAPause) {
    Connection station;
    for (int round = 0; round < 20; ++round) {
        station.sendByteByByte(kSerialRequest);
        expectExchange(station, "", kSerialAnswer);
    }
    expectNothingMore(station);
}

TEST_F(FramingTest, TakesALineByteByByteEachReadAlone) {
    Connection station;
    for (const char byte : std::string(kSerialRequest)) {
        station.send({&byte, 1});
        station.waitUntilTaken();
    }
    expectExchange(station, "", kSerialAnswer);
    expectNothingMore(station);
}

TEST_F(FramingTest, ServesAnyNumberOfCommandsInSequence) {
    Connection station;
    for (int number = 0; number < 500; ++number) {
        const std::string name = "n" + std::to_string(number);
        expectExchange(station, request(name), unknown(name));
    }
    expectNothingMore(station);
}

TEST_F(FramingTest, AnswersAfterTheStationHasFinishedSending) {
    Connection station;
    station.send(kSerialRequest);
    station.shutdownSending();
    EXPECT_EQ(station.receiveUntilClosed(), kSerialAnswer);
}

TEST_F(FramingTest, DropsALineThatTheStationDoesNotFinish) {
    const std::string line = kSerialRequest;
    for (std::size_t length = 0; length + 1 < line.size(); ++length) {
        SCOPED_TRACE(length);
        Connection station;
        station.send(line.substr(0, length));
        station.shutdownSending();
        EXPECT_EQ(station.receiveUntilClosed(), "");
    }
    // Had one of them been scanned, it would be what a line without a name repeats.
    Connection station;
    expectExchange(station, "\x03\n", "\x02#\x03\n");
}

TEST_F(FramingTest, EmptyListIsAnsweredByAnEmptyText) {
    const std::string kWithoutName[] = {"\x03\n",           "\x02\x03\n",    "noise\x03\n",
                                        "\0\x02one\x03\n"s, "\x02 .,\x03\n", "\n\n\n\x03\n"};
    Connection station;
    for (const std::string& line : kWithoutName) {
        SCOPED_TRACE(testing::PrintToString(line));
        expectExchange(station, line, "\x02#\x03\n");
    }
    // The fifth line's echo stands in front of its own report.
    const std::string report = "command fehler\n";
    EXPECT_TRUE(daemon.waitForOutput(report + report + report + report + " .," + report + report))
        << daemon.output();
    expectNothingMore(station);
}

} // namespace
