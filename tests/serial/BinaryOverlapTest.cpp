#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "line/BinaryLink.h"
#include "support/Connection.h"
#include "support/Lines.h"

namespace {

using namespace std::string_literals;

constexpr int kStations = 3;
constexpr int kRounds = 300;

/// The line and TCP stations at the same time, each with answers of its own.
class BinaryOverlapTest : public BinaryLinkTest {
protected:
    void runTcpStation(int number) {
        Connection station;
        const std::string name = "station" + std::to_string(number);
        for (int round = 0; round < kRounds && !HasFailure(); ++round) {
            expectExchange(station, request("status"),
                           answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4"));
            expectExchange(station, request("status 09"), failure("status", "unsupported subcommand"));
            expectExchange(station, request("exec command 5"),
                           failure("exec",
                                   "Command execute was called with 3 parameters must have 4 "
                                   "parameters"));
            expectExchange(station, request(name), unknown(name));
        }
    }

    void runSerialStation() {
        const std::string unknownCommand = "\5x\1\2\3";
        const std::string tooLong = "\4s\1\2";
        const std::string wrongExec = "\6c\7\x08\t\n";
        for (int round = 0; round < kRounds && !HasFailure(); ++round) {
            BinaryLinkTest::expectExchange(kStatusRequest, status(true));
            BinaryLinkTest::expectExchange(tooLong, refusal(tooLong, "Command 's': too long!"));
            BinaryLinkTest::expectExchange(wrongExec, refusal(wrongExec, "unsupported c subcommand"));
            BinaryLinkTest::expectExchange(unknownCommand,
                                           refusal(unknownCommand, "No Handler for the Command x"));
        }
    }

    using BinaryLinkTest::expectExchange;
    static void expectExchange(Connection& station, const std::string& sent, const std::string& got) {
        ::expectExchange(station, sent, got);
    }
};

TEST_F(BinaryOverlapTest, FramesAndLinesNeverCross) {
    std::vector<std::thread> stations;
    stations.reserve(kStations);
    for (int number = 0; number < kStations; ++number)
        stations.emplace_back([this, number] { runTcpStation(number); });
    runSerialStation();
    for (std::thread& station : stations)
        station.join();
}

TEST_F(BinaryOverlapTest, CommandsOfBothLinksHaveTheirOwnOutput) {
    constexpr int kCommands = 20;
    std::thread station([] {
        Connection connection;
        for (int number = 0; number < kCommands && !HasFailure(); ++number) {
            const std::string output = "tcp " + std::to_string(number);
            expectExchange(connection, request("exec command 60 \"echo " + output + "\""),
                           answer("exec base64(" + base64(output + "\n") + ")"));
        }
    });
    for (int number = 0; number < kCommands && !HasFailure(); ++number) {
        const std::string output = "serial " + std::to_string(number);
        const std::string command = execRequest(60, "echo " + output);
        BinaryLinkTest::expectExchange(command, answerFrame(command, output + "\n"));
    }
    station.join();
}

TEST_F(BinaryOverlapTest, ALineThatComesBackIsAnnouncedWhileOthersAreServed) {
    constexpr int kReplugs = 20;
    std::thread station([this] { runTcpStation(0); });
    for (int replug = 0; replug < kReplugs && !HasFailure(); ++replug) {
        adapter.waitUntilTaken();
        adapter.pull();
        adapter.plug();
        expectReturn();
        expectErrors(LinkErrors::kLineGone);
    }
    station.join();
}

} // namespace
