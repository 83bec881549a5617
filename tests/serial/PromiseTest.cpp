// What the daemon promises everybody: whatever a peer or a line does, another connection's status is
// answered within 100 ms.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "AsciiDaemonTest.h"
#include "line/BinaryLink.h"
#include "platform/Descriptors.h"
#include "support/StatusWatch.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

constexpr long kAnswers = 100;
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
    {"AVeryLongLine", false,
     [](Situation& situation) {
         std::string line = "unknown";
         for (int word = 0; word < 500'000; ++word)
             line += " a";
         Connection& station = connect(situation);
         station.send(request(line));
         EXPECT_NE(station.receiveLine(), "");
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

    /// Of another connection's status, from before the stranger comes.
    static std::chrono::milliseconds longestDelay() {
        Adapter adapter;
        System::Descriptor unread;
        System::Descriptor stream;
        EXPECT_TRUE(System::openPipe(unread, stream));
        DaemonStart start = GetParam().isAscii ? asciiStart() : withStationLine();
        if (GetParam().hasUnreadStreams) {
            start.standardOutput = stream.get();
            start.standardError = stream.get();
        }
        const Daemon daemon(start);
        EXPECT_FALSE(adapter.isSilentFor(kPatience)); // greeted or announced
        Situation situation{adapter, {}};
        StatusWatch watch(undisturbedStatus());
        GetParam().stall(situation);
        EXPECT_TRUE(watch.seesMore(kAnswers));
        EXPECT_TRUE(daemon.isAlive());
        return watch.longestDelay();
    }
};

TEST_P(PromiseTest, IsKeptWhateverAStrangerDoes) {
    expectStatusInTime(longestDelay);
}

INSTANTIATE_TEST_SUITE_P(Strangers, PromiseTest, testing::ValuesIn(kRows),
                         [](const auto& information) { return std::string(information.param.name); });

} // namespace
