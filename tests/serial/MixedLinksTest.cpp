#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "AsciiDaemonTest.h"
#include "support/UnitFiles.h"

namespace {

using namespace std::string_literals;

constexpr char kAcknowledgement[] = "\x02\x06";
constexpr int kStations = 16;
constexpr int kRequestsEach = 5'000;
constexpr int kSerialRequests = 20'000; // 100,000 together

using Exchange = std::pair<std::string, std::string>; // what is sent, what is received

/// Of a TCP station; most answers are its own and no other's.
Exchange tcpExchange(int station, int round, const std::string& status) {
    const std::string name = "s" + std::to_string(station) + "r" + std::to_string(round);
    switch ((station + round) % 8) {
        case 0:
            return {request("status"), status};
        case 1:
            return {request("status 02"), answer("status base64(MDEyMw==)")};
        case 2:
            return {request("ack " + name), answer("")};
        default:
            return {request(name + " \"" + name + "\""), unknown(name)};
    }
}

Exchange asciiExchange(int round, const std::string& status) {
    const std::string name = "line" + std::to_string(round);
    // Starting a shell takes a thousand times as long as the others do.
    if (round % 200 == 0)
        return {request("exec command 60 \"echo " + name + "\""),
                answer("exec base64(" + base64(name + "\n") + ")")};
    switch (round % 8) {
        case 1:
            return {request("status"), status};
        case 2:
            return {request("status 02"), answer("status base64(MDEyMw==)")};
        case 3:
            return {request("ack " + name) + request(name), unknown(name)};
        default:
            return {request(name + " \"" + name + "\""), unknown(name)};
    }
}

/// A frame with an id that nobody has; the answer repeats its number.
Exchange unknownFrame(int round) {
    constexpr char kUnknownIds[] = "xyzQ";
    const char id = kUnknownIds[round / 0x10000 % 4];
    const std::string number = {static_cast<char>(round >> 8 & 0xFF), static_cast<char>(round & 0xFF)};
    const std::string text = "No Handler for the Command "s + id;
    const auto length = static_cast<char>(text.size() + 2);
    return {"\x04"s + id + number, ""s + length + "d" + text + "\x08" + id + number + "\x01\x01\0\0"s};
}

Exchange binaryExchange(int round, const std::string& status) {
    if (round % 200 == 0) {
        const std::string text = "echo " + std::to_string(round);
        const std::string output = std::to_string(round) + "\n";
        return {""s + static_cast<char>(text.size() + 5) + "c\x01\0\x3C"s + text,
                ""s + static_cast<char>(output.size() + 8) + "c\x01\0\0\0\0\0"s + output};
    }
    switch (round % 8) {
        case 1:
            return {"\x02s", status};
        case 2:
            return {"\x03s\x02", "\x0Cs\x02\0\0\0\0\0"s + "0123"};
        default:
            return unknownFrame(round);
    }
}

class MixedLinksTest : public testing::Test {
protected:
    MixedLinksTest() { writeFile(kSerialNumberFile, "0123"); }

    /// Runs the line's station and the others at the same time; exceptions fail the test.
    static void runAll(const Daemon& daemon, const std::function<void()>& line) {
        const std::string status = asciiStatus(daemon);
        std::vector<std::thread> threads;
        const auto add = [&threads](std::function<void()> task) {
            threads.emplace_back([task = std::move(task)] {
                try {
                    task();
                } catch (const std::exception& exception) {
                    ADD_FAILURE() << exception.what();
                }
            });
        };
        add(line);
        for (int number = 0; number < kStations; ++number)
            add([number, &status] { runTcpStation(number, status); });
        for (std::thread& thread : threads)
            thread.join();
    }

    static std::string asciiStatus(const Daemon& daemon) {
        return answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4");
    }

    Adapter adapter;

private:
    static void runTcpStation(int number, const std::string& status) {
        Connection station;
        for (int round = 0; round < kRequestsEach && !HasFailure(); ++round) {
            const auto [sent, received] = tcpExchange(number, round, status);
            expectExchange(station, sent, received);
        }
        expectNothingMore(station);
    }
};

TEST_F(MixedLinksTest, GetTheirOwnAnswersBesideAsciiLines) {
    const Daemon daemon(asciiStart());
    expectExchange(adapter, "", banner(daemon));
    const std::string status = asciiStatus(daemon);
    runAll(daemon, [this, &status] {
        for (int round = 0; round < kSerialRequests && !HasFailure(); ++round) {
            const auto [sent, received] = asciiExchange(round, status);
            expectExchange(adapter, sent, received);
        }
        expectNothingMore(adapter);
    });
    expectHealthy(daemon);
}

TEST_F(MixedLinksTest, GetTheirOwnAnswersBesideBinaryFrames) {
    DaemonStart start;
    start.stationLine = true;
    const Daemon daemon(start);
    std::string status = adapter.receiveFrame();
    ASSERT_EQ(status.size(), 24U);
    status[3] = 1;
    adapter.send(kAcknowledgement);
    runAll(daemon, [this, &status] {
        for (int round = 0; round < kSerialRequests && !HasFailure(); ++round) {
            const auto [sent, received] = binaryExchange(round, status);
            expectExchange(adapter, sent, received);
            adapter.send(kAcknowledgement);
        }
        EXPECT_TRUE(adapter.isSilentFor(kSilence));
    });
    EXPECT_TRUE(daemon.isAlive());
    // An acknowledgement may come late on a busy machine, but none is anything else.
    EXPECT_EQ(daemon.error().find("Received"), std::string::npos) << daemon.error();
}

} // namespace
