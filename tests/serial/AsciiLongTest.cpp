#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>

#include "AsciiDaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

constexpr std::size_t kLongLine = std::size_t{1} << 20;
constexpr std::size_t kLongOutput = 300'000;
constexpr long kSomeAnswers = 100;

std::string longOutputRequest() {
    return request("exec command 60 \"head -c 300000 /dev/zero | tr '\\000' x\"");
}

std::string longOutputAnswer() {
    return answer("exec base64(" + base64(std::string(kLongOutput, 'x')) + ")");
}

class AsciiLongTest : public AsciiDaemonTest {
protected:
    /// The station has begun to get an answer and does not read it.
    void waitForInput() { ASSERT_FALSE(adapter.isSilentFor(kPatience)); }

    static void expectOthersServed() {
        const Witness witness;
        EXPECT_TRUE(witness.seesMore(kSomeAnswers));
    }
};

TEST_F(AsciiLongTest, TakesALongLineAndAnswersAtLength) {
    const std::string name(kLongLine, 'n');
    expectExchange(adapter, request(name), unknown(name));
}

TEST_F(AsciiLongTest, TakesALineOfManyArguments) {
    std::string line = "foo";
    while (line.size() < kLongLine)
        line += " 1234567 \"quoted text\" hex(0102) base64(QUJD)";
    expectExchange(adapter, request(line), unknown("foo"));
}

TEST_F(AsciiLongTest, ServesOthersWhileALongLineComes) {
    const std::string name(kLongLine, 'n');
    adapter.send("\x02" + name.substr(0, kLongLine / 2));
    expectOthersServed();
    expectExchange(adapter, name.substr(kLongLine / 2) + "\x03\n", unknown(name));
}

TEST_F(AsciiLongTest, SendsALongAnswerToASlowReader) {
    constexpr std::size_t kPiece = 1000;
    const std::string expected = longOutputAnswer();
    adapter.send(longOutputRequest());
    Connection other;
    std::string received;
    while (received.size() < expected.size()) {
        const std::string piece = adapter.receive(std::min(kPiece, expected.size() - received.size()));
        ASSERT_FALSE(piece.empty());
        received += piece;
        expectExchange(other, request("other"), unknown("other"));
    }
    EXPECT_TRUE(received == expected);
}

TEST_F(AsciiLongTest, ServesOthersWhileItsStationDoesNotReadAnAnswer) {
    adapter.send(longOutputRequest());
    waitForInput();
    expectOthersServed();
    expectExchange(adapter, "", longOutputAnswer());
}

TEST_F(AsciiLongTest, ServesOthersWhileItsStationDoesNotReadAMessage) {
    const std::string name(kLongLine, 'n');
    adapter.send(request(name));
    waitForInput();
    expectOthersServed();
    expectExchange(adapter, "", unknown(name));
}

TEST_F(AsciiLongTest, ServesOthersWhileItsStationDoesNotReadAKilledCommandsOutput) {
    const std::string text = "head -c 300000 /dev/zero | tr '\\000' y; touch /tmp/written; sleep 1000";
    adapter.send(request("exec command 5 \"" + text + "\""));
    waitForInput();
    ASSERT_TRUE(exists("/tmp/written")) << "five seconds did not suffice to write the output";
    expectOthersServed();
    expectExchange(adapter, "",
                   failure("exec", "Process " + text + " was killed after timeout\nstdout+err:\n" +
                                       std::string(kLongOutput, 'y') + "\n"));
}

TEST_F(AsciiLongTest, AnswersAllRequestsThatPiledUpMeanwhile) {
    adapter.send(longOutputRequest());
    waitForInput();
    std::string received = longOutputAnswer();
    for (int number = 0; number < 50; ++number) {
        const std::string name = "piled" + std::to_string(number);
        adapter.send(request(name));
        received += unknown(name);
    }
    expectExchange(adapter, "", received);
}

TEST_F(AsciiLongTest, CostsNothingWhileItsStationDoesNotRead) {
    constexpr std::chrono::milliseconds kObservation{500};
    constexpr std::chrono::milliseconds kNearlyNothing{100};
    adapter.send(longOutputRequest());
    waitForInput();
    const auto before = processorTime(daemon.pid());
    observeFor(kObservation);
    EXPECT_LE(processorTime(daemon.pid()) - before, kNearlyNothing);
    expectExchange(adapter, "", longOutputAnswer());
}

TEST_F(AsciiLongTest, SurvivesThatTheLineGoesWhileItWrites) {
    const auto descriptors = openDescriptors(daemon.pid()).size();
    adapter.send(longOutputRequest());
    waitForInput();
    expectOthersServed();
    adapter.pull();
    expectOthersServed();
    adapter.plug();
    expectBanner();
    EXPECT_TRUE(eventually([&] { return openDescriptors(daemon.pid()).size() == descriptors; }));
    EXPECT_EQ(openTerminals(daemon.pid()).size(), 1U);
}

} // namespace
