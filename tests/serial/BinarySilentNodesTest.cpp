// Nodes that say nothing, asked for over the binary line:
// each request gets its frames and the line goes on.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "line/BinaryLink.h"
#include "support/Connection.h"
#include "support/Lines.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

class BinarySilentNodesTest : public BinaryLinkTest {};

TEST_F(BinarySilentNodesTest, AreReportedAndTheLineIsServed) {
    struct Row {
        const char* path;
        std::string request;
        std::string answer; ///< both frames
    };
    const Row kRows[] = {
        {"/dev/nvgpio/usb_pwr_1", "\5p\xE3\1\3"s,
         debugFrame("Reading from Port 3 results in Error-Code 110") + "\x08p\xE3\1\x27\0\0\0"s},
        {"/dev/nvgpio/ioc_kru_irq", "\4p\xE3\0"s,
         debugFrame("Failed to read Port 0: Connection timed out, errorcode: 110") +
             "\x08p\xE3\0\x27\0\0\0"s},
        {"/dev/nvgpio/usb_pwr_0", "\6P\xE3\1\4\4"s,
         debugFrame("Open Port 4 results in Error 6: No such device or address") +
             "\x08P\xE3\1\x27\0\0\0"s},
        {"/dev/cd0", "\5m\xB2\0\1"s,
         debugFrame("Failed to open Device /dev/cd0: Connection timed out, errorCode: 110") +
             "\x08m\xB2\0\1\1\0\0"s},
        // The revision is known by now.
        {kRevisionFile, "\2s"s, status(true)},
    };
    for (const Row& row : kRows) {
        makeSilent(row.path);
        expectExchange(row.request, row.answer);
        expectServed();
    }
}

TEST_F(BinarySilentNodesTest, ABusIsReportedAndTheLineIsServed) {
    makeSilent("/dev/i2c0");
    expectExchange(
        "\5i\0\1\x50"s,
        debugFrame("Read Error on Device /dev/i2c0: Inappropriate ioctl for device, errorcode: 25") +
            "\x08i\0\1\7\0\0\1"s);
    expectServed();
}

TEST_F(BinarySilentNodesTest, VersionFilesAreReportedWithoutAnAnswerFrame) {
    for (const auto& [request, path] :
         {std::pair{"\3s\1"s, kImageVersionFile}, std::pair{"\3s\2"s, kSerialNumberFile}}) {
        makeSilent(path);
        expectReply(request, unanswerable("cannot open "s + path + ", no information available"));
        expectErrors({LinkErrors::kOutOfRange});
        expectServed();
    }
}

TEST(BinarySilentRevision, HoldsUpNobodyButTheLine) {
    constexpr long kAttempts = 10;
    constexpr std::chrono::milliseconds kSlow{300};
    Adapter adapter;
    makeSilent(kRevisionFile);
    const Daemon daemon(withStationLine());
    Connection other;
    long slow = 0;
    const auto isEmptyResponse = [](const std::string& line) {
        return line == LinkErrors::kEmptyResponse;
    };
    EXPECT_TRUE(eventually([&] {
        const auto start = std::chrono::steady_clock::now();
        expectExchange(other, request("ack"), answer(""));
        slow += std::chrono::steady_clock::now() - start > kSlow ? 1 : 0;
        const std::vector<std::string> lines = errorLines(daemon);
        return std::count_if(lines.begin(), lines.end(), isEmptyResponse) >= kAttempts;
    }));
    EXPECT_LT(slow, kAttempts / 2) << "each attempt would delay one";
}

} // namespace
