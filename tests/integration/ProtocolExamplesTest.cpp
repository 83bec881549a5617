#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "support/DaemonTest.h"
#include "support/ExchangeBlocks.h"
#include "support/ExchangeExamples.h"
#include "support/Pattern.h"

namespace {

constexpr std::size_t kFewestExamples = 3;

// What the daemon notes when a line is read that is not open, as one of the examples does.
constexpr char kReadOfAClosedLine[] = "Prod.testserver: Read locked error in CommHandler\n";

void run(const ExchangeBlock& example) {
    Connection station;
    for (const ExchangeLine& line : example.lines) {
        SCOPED_TRACE(line.text);
        if (line.isSent) {
            station.send(bytesOf(line.text));
            continue;
        }
        const std::string received = station.receiveLine();
        EXPECT_TRUE(matchesWhole(received, patternOf(line.text))) << testing::PrintToString(received);
    }
    expectNothingMore(station);
}

TEST(ProtocolExamplesTest, AreAnsweredAsTheDocumentSays) {
    const Daemon daemon;
    std::ifstream document(PROTOCOL_DOCUMENT);
    ASSERT_TRUE(document) << PROTOCOL_DOCUMENT;
    const auto examples = readExchangeBlocks(document, {"tcp"});
    ASSERT_GE(examples.size(), kFewestExamples);
    for (std::size_t at = 0; at < examples.size(); ++at) {
        SCOPED_TRACE("example " + std::to_string(at + 1));
        EXPECT_FALSE(examples[at].lines.empty());
        run(examples[at]);
    }
    EXPECT_TRUE(daemon.isAlive());
    ASSERT_TRUE(daemon.waitForError(kReadOfAClosedLine));
    std::string error = daemon.error();
    const std::size_t note = error.find(kReadOfAClosedLine);
    EXPECT_TRUE(isBannerOnly(error.erase(note, sizeof kReadOfAClosedLine - 1))) << error;
}

} // namespace
