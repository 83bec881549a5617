#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "FrameExamples.h"
#include "client/BinaryRequest.h"
#include "line/Adapter.h"
#include "station/Words.h"
#include "support/Daemon.h"
#include "support/ExchangeBlocks.h"
#include "wire/Catalogue.h"

namespace {

// Shows every byte from the opening of the port; the others leave the acknowledgements out.
constexpr char kLink[] = "link";
constexpr char kAcknowledgement[] = "\x02\x06";
constexpr char kDebugMarker = 'd';

/// Day, month, year, hour and minute of the stamp, read as the document describes them.
std::string documentedBuildTime(const std::string& stamp) {
    std::string bytes;
    for (const std::size_t at : {8U, 5U, 2U, 11U, 14U}) {
        const std::string digits =
            (stamp[at] == ' ' ? "0" : stamp.substr(at, 1)) + stamp.substr(at + 1, 1);
        bytes += static_cast<char>(std::stoul(digits, nullptr, 16));
    }
    return bytes;
}

DaemonStart withStationLine() {
    DaemonStart start;
    start.stationLine = true;
    return start;
}

/// A unit that has just been started, and its station.
struct Link {
    void play(const ExchangeBlock& block) {
        for (const ExchangeLine& line : block.lines) {
            const std::string bytes = bytesOf(line.text, buildTime);
            if (line.isSent) {
                adapter.send(bytes);
                continue;
            }
            ASSERT_EQ(adapter.receive(bytes.size()), bytes) << line.text;
            if (block.kind != kLink && bytes[1] != kDebugMarker)
                adapter.send(kAcknowledgement);
        }
    }

    Adapter adapter;
    Daemon daemon{withStationLine()};
    std::string buildTime = documentedBuildTime(daemon.buildStamp());
};

/// What the daemon complains of while all blocks are played.
std::string complaintsAbout(const std::vector<ExchangeBlock>& blocks) {
    Link link;
    for (const ExchangeBlock& block : blocks)
        if (!testing::Test::HasFatalFailure())
            link.play(block);
    return link.daemon.error();
}

std::vector<ExchangeBlock> documentedBlocks() {
    std::ifstream document(PROTOCOL_DOCUMENT);
    EXPECT_TRUE(document) << PROTOCOL_DOCUMENT;
    return readExchangeBlocks(document, {"frames", kLink});
}

/// The frame that the station sends when it is told these words.
std::string frameFor(const std::string& line) {
    std::vector<std::string> arguments = station::words(line);
    const std::string name = arguments.front();
    arguments.erase(arguments.begin());
    return station::BinaryRequest::encode(name, arguments).bytes();
}

TEST(DocumentedFrames, AreWhatTheStationSendsForTheWordsBehindThem) {
    std::set<std::string> told;
    for (const ExchangeBlock& block : documentedBlocks())
        for (const ExchangeLine& line : block.lines)
            if (const std::string words = wordsBehind(line.text); !words.empty()) {
                EXPECT_EQ(frameFor(words), bytesOf(line.text, "")) << line.text;
                told.insert(words.substr(0, words.find(' ')));
            }
    for (const wire::Command& command : wire::kCatalogue)
        EXPECT_EQ(told.count(std::string(command.name)), 1U)
            << command.name << ": to be written behind a frame in docs/protocol.md";
}

TEST(DocumentedFrames, AreAnsweredAsTheDocumentSays) {
    const auto blocks = documentedBlocks();
    ASSERT_GE(blocks.size(), 4U);
    // The one block that begins with the opening of the port comes before all others.
    ASSERT_EQ(blocks.front().kind, kLink);
    // On a busy machine an acknowledgement may come later than the daemon waits for it, but not each
    // time.
    constexpr int kAttempts = 3;
    std::string complaints;
    for (int attempt = 0; attempt < kAttempts && !HasFailure(); ++attempt) {
        complaints = complaintsAbout(blocks);
        if (complaints.find("ACK") == std::string::npos)
            return;
    }
    EXPECT_EQ(complaints.find("ACK"), std::string::npos) << complaints;
}

} // namespace
