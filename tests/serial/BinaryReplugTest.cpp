#include <gtest/gtest.h>

#include <chrono>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "line/BinaryLink.h"
#include "line/GatedCommand.h"
#include "support/DaemonTest.h"
#include "support/Pattern.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

constexpr int kReplugs = 100;
constexpr std::chrono::seconds kObservation{2};
constexpr std::chrono::milliseconds kLittleProcessorTime{kSanitized ? 1000 : 200};
// What a single cut may have the unit say.
constexpr std::ptrdiff_t kLinesOfACut = 12;

// All that it may say, since a cut can come between any two of its steps.
constexpr char kKnownLines[] =
    "(Could not open the device: F|~ ### ~ Exception: ID: 0x[0-9]+ DESC: F|3~ ### ~ Exception: ID: "
    "0x[0-9A-F]+ DESC: F)ailed .* /dev/usbserialadapter1: .*"
    "|3~ ### ~ Exception: ID: 0x400 DESC: Serial port not open\\."
    "|Read locked error in CommHandler|Error in Listener thead loop"
    "|NO ACK message received from the client \\(not critical\\)|Received Data invalid: 1"
    "|File /tmp/resp\\.txt is empty"
    // Where the machine stood still.
    "|### ATTENTION: Command-Runtime for \".\": [0-9]+ ms";

/// A station whose line is cut while something is underway.
class Cut {
public:
    Cut(Adapter& line, const Daemon& unit) : adapter(line), daemon(unit) {}

    Adapter& adapter;
    const Daemon& daemon;
    GatedCommand command;
    int round = 0;
    std::string buildStamp = daemon.buildStamp();

    std::string status() const { return statusFrame(buildStamp, true); }
    std::string returning() const { return repetitionFrames() + status(); }

    void expect(const std::string& frames) { EXPECT_EQ(adapter.receive(frames.size()), frames); }

    void sendTaken(std::string_view bytes) {
        adapter.send(bytes);
        adapter.waitUntilTaken();
    }

    void replug() {
        adapter.pull();
        adapter.plug();
    }

    /// The startup status, behind those of its two debug frames that the line was there for: when it
    /// comes back while the unit announces itself, the unit may open it for the second one.
    void expectAnnouncement() {
        const std::string repetition = repetitionFrames();
        for (std::string frame = adapter.receiveFrame(); frame != status();
             frame = adapter.receiveFrame())
            ASSERT_NE(repetition.find(frame), frame.empty() ? 0 : std::string::npos)
                << testing::PrintToString(frame);
    }

    /// The unit is back as if nothing had happened.
    void expectService() {
        ASSERT_NO_FATAL_FAILURE(expectAnnouncement());
        sendTaken(kAcknowledgement);
        adapter.send(std::string(kStatusRequest).append(kAcknowledgement));
        expect(status());
        adapter.waitUntilTaken();
    }
};

const std::string kRefused = "\4x\1\2";
const std::string kRefusal = refusal(kRefused, "No Handler for the Command x");

void whileIdle(Cut& cut) {
    cut.replug();
}

void afterTheLengthByte(Cut& cut) {
    cut.sendTaken("\4");
    cut.replug();
}

void inTheBody(Cut& cut) {
    cut.sendTaken("\xF0x\1");
    cut.replug();
}

void whileACommandRuns(Cut& cut) {
    cut.command.start(cut.adapter, cut.daemon);
    cut.adapter.pull();
    if (cut.round % 2 == 0)
        cut.adapter.plug();
    cut.command.openGate();
    if (cut.round % 2 != 0)
        cut.adapter.plug();
}

/// At once, or as soon as the first bytes of what is being sent are there.
void whileFramesAreSent(Cut& cut) {
    cut.adapter.send(kRefused);
    cut.adapter.receive(static_cast<std::size_t>(cut.round) % (kRefusal.size() + 1));
    cut.replug();
}

void beforeTheAnswerIsRead(Cut& cut) {
    cut.adapter.send(kStatusRequest);
    EXPECT_FALSE(cut.adapter.isSilentFor(kPatience));
    cut.replug();
}

void beforeTheAcknowledgement(Cut& cut) {
    cut.adapter.send(kRefused);
    cut.expect(kRefusal);
    cut.replug();
}

void inTheAcknowledgement(Cut& cut) {
    cut.adapter.send(kRefused);
    cut.expect(kRefusal);
    cut.sendTaken("\x02");
    cut.replug();
}

void whileItAnnouncesItself(Cut& cut) {
    cut.replug();
    cut.adapter.receive(static_cast<std::size_t>(cut.round) % (cut.returning().size() + 1));
    cut.replug();
}

struct Phase {
    const char* name;
    void (*cut)(Cut&);
};

std::ostream& operator<<(std::ostream& stream, const Phase& phase) {
    return stream << phase.name;
}

class BinaryReplug : public testing::TestWithParam<Phase> {
protected:
    void SetUp() override {
        cut.expect(statusFrame(cut.buildStamp, false));
        cut.sendTaken(kAcknowledgement);
    }

    void expectKnownLines(std::ptrdiff_t cuts) const {
        const std::vector<std::string> lines = errorLines(daemon);
        EXPECT_LE(static_cast<std::ptrdiff_t>(lines.size()), cuts * kLinesOfACut);
        for (const std::string& line : lines)
            ASSERT_TRUE(matchesWhole(line, kKnownLines)) << line;
    }

    void expectRest() const {
        const auto before = processorTime(daemon.pid());
        observeFor(kObservation);
        EXPECT_LT(processorTime(daemon.pid()) - before, kLittleProcessorTime);
    }

    Adapter adapter;
    Daemon daemon{withStationLine()};
    Cut cut{adapter, daemon};
};

TEST_P(BinaryReplug, TheUnitComesBack) {
    const std::size_t descriptors = openDescriptors(daemon.pid()).size();
    const std::size_t threads = settledThreadCount(daemon.pid());
    {
        const Witness witness;
        for (cut.round = 0; cut.round < kReplugs && !HasFailure(); ++cut.round) {
            SCOPED_TRACE(cut.round);
            GetParam().cut(cut);
            cut.expectService();
        }
        EXPECT_TRUE(witness.seesMore(1));
    }
    EXPECT_TRUE(eventually([&] { return openDescriptors(daemon.pid()).size() == descriptors; }));
    EXPECT_TRUE(eventually([&] { return threadCount(daemon.pid()) == threads; }));
    expectKnownLines(2 * kReplugs);
    expectRest();
    adapter.pull();
    expectRest();
    EXPECT_TRUE(daemon.isAlive());
}

INSTANTIATE_TEST_SUITE_P(Phases, BinaryReplug,
                         testing::Values(Phase{"WhileIdle", whileIdle},
                                         Phase{"AfterTheLengthByte", afterTheLengthByte},
                                         Phase{"InTheBody", inTheBody},
                                         Phase{"WhileACommandRuns", whileACommandRuns},
                                         Phase{"WhileFramesAreSent", whileFramesAreSent},
                                         Phase{"BeforeTheAnswerIsRead", beforeTheAnswerIsRead},
                                         Phase{"BeforeTheAcknowledgement", beforeTheAcknowledgement},
                                         Phase{"InTheAcknowledgement", inTheAcknowledgement},
                                         Phase{"WhileItAnnouncesItself", whileItAnnouncesItself}),
                         testing::PrintToStringParamName());

} // namespace
