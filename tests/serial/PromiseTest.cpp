// What the daemon promises everybody: whatever a peer or a line does, another connection's status is
// answered within 100 ms.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "AsciiDaemonTest.h"
#include "line/BinaryLink.h"
#include "platform/Descriptors.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPromised{100};
constexpr int kRequests = 51;
constexpr std::size_t kLongContent = 350'000; // a version file whose answer no line or connection holds

/// Both of the daemon's sides, and what has to outlive a case.
struct Situation {
    Adapter& adapter;
    std::vector<Connection> connections;
};

struct Row {
    const char* name;
    bool isAscii; ///< what the serial line speaks
    std::function<void(Situation&)> stall;
    bool hasUnreadStreams = false; ///< nobody reads what the daemon writes to its standard streams
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.name;
}

void askForMuch(Connection& deaf) {
    deaf.send(request("status 01"));
    ASSERT_TRUE(deaf.hasInputWithin(kPatience));
}

void askForMuchOverTheLine(Situation& situation) {
    situation.adapter.send(request("status 01"));
    ASSERT_FALSE(situation.adapter.isSilentFor(kPatience));
}

Connection& connect(Situation& situation) {
    return situation.connections.emplace_back();
}

const Row kRows[] = {
    {"ConnectionsThatDoNotRead", false,
     [](Situation& situation) {
         for (int count = 0; count < 10; ++count) {
             situation.connections.push_back(Connection::withSmallBuffer());
             askForMuch(situation.connections.back());
         }
     }},
    {"ConnectionsInTheMiddleOfALine", false,
     [](Situation& situation) {
         for (int count = 0; count < 100; ++count)
             connect(situation).send("\x02unfinished " + std::string(100'000, 'x'));
     }},
    {"AQuotedLineWithoutEnd", false,
     [](Situation& situation) {
         connect(situation).send("\x02unfinished \"" + std::string(5'000'000, 'x'));
     }},
    {"ALineStationThatDoesNotRead", true, askForMuchOverTheLine},
    {"ALineStationThatDoesNotReadWhileOthersUseItsLine", true,
     [](Situation& situation) {
         askForMuchOverTheLine(situation);
         Connection& other = connect(situation);
         for (const char* text : {"serial getall 3", "serial get 3 5", "serial send 3 hex(41)"}) {
             other.send(request(text));
             EXPECT_NE(other.receiveLine(), "");
         }
     }},
    {"ALineStationInTheMiddleOfALine", true,
     [](Situation& situation) {
         situation.adapter.send("\x02half");
         situation.adapter.waitUntilTaken();
     }},
    {"AFrameStationInTheMiddleOfAFrame", false,
     [](Situation& situation) {
         situation.adapter.send("\xFFs");
         situation.adapter.waitUntilTaken();
     }},
    {"AFrameStationThatDoesNotRead", false,
     [](Situation& situation) {
         for (int count = 0; count < 2'000; ++count)
             situation.adapter.send(std::string(kStatusRequest).append(kAcknowledgement));
     }},
    {"ALineThatHasGone", true, [](Situation& situation) { situation.adapter.pull(); }},
    {"ABluetoothChipThatSaysNothing", false,
     [](Situation& situation) {
         expectExchange(connect(situation), request("serial open 241"), answer("serial ok"));
     }},
    {"ReadersOfStandardStreamsThatDoNotRead", false,
     [](Situation& situation) {
         // Noise goes to standard output, and the reason of a failure to standard error.
         Connection& noisy = connect(situation);
         noisy.send(std::string(1'000'000, '%') + request("unknown"));
         EXPECT_NE(noisy.receiveLine(), "");
         for (int count = 0; count < 2'000; ++count) {
             noisy.send(request("serial get 2 1"));
             EXPECT_NE(noisy.receiveLine(), "");
         }
     },
     true},
};

class PromiseTest : public testing::TestWithParam<Row> {
protected:
    PromiseTest() { writeFile(kImageVersionFile, std::string(kLongContent, 'x')); }

    static std::string undisturbedStatus() {
        Connection station;
        station.send(request("status"));
        return station.receiveLine();
    }

    /// How long half of the requests take at most: on a busy machine a single one may wait for its turn.
    static std::chrono::milliseconds usualDelay(const std::string& status) {
        std::vector<Clock::duration> delays;
        Connection station;
        for (int count = 0; count < kRequests; ++count) {
            const auto begin = Clock::now();
            expectExchange(station, request("status"), status);
            delays.push_back(Clock::now() - begin);
        }
        std::sort(delays.begin(), delays.end());
        return std::chrono::duration_cast<std::chrono::milliseconds>(delays[kRequests / 2]);
    }

    Adapter adapter;
};

TEST_P(PromiseTest, IsKeptWhateverAStrangerDoes) {
    System::Descriptor unread;
    System::Descriptor stream;
    ASSERT_TRUE(System::openPipe(unread, stream));
    DaemonStart start = GetParam().isAscii ? asciiStart() : withStationLine();
    if (GetParam().hasUnreadStreams) {
        start.standardOutput = stream.get();
        start.standardError = stream.get();
    }
    const Daemon daemon(start);
    EXPECT_FALSE(adapter.isSilentFor(kPatience)); // greeted or announced
    const std::string status = undisturbedStatus();
    Situation situation{adapter, {}};
    GetParam().stall(situation);
    if (!HasFailure()) {
        EXPECT_LE(usualDelay(status), kPromised);
    }
    EXPECT_TRUE(daemon.isAlive());
}

INSTANTIATE_TEST_SUITE_P(Strangers, PromiseTest, testing::ValuesIn(kRows),
                         [](const auto& information) { return std::string(information.param.name); });

} // namespace
