#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>

#include "line/BinaryLink.h"

namespace {

using namespace std::string_literals;

constexpr unsigned kLimit = 1;
constexpr std::size_t kLongestText = 253;

struct Row {
    std::size_t textSize;
    unsigned char frameSize;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.textSize;
}

class BinaryDebugFrameTest : public BinaryLinkTest, public testing::WithParamInterface<Row> {};

/// What is said of a command that was killed, of the wanted length: it holds what the command wrote.
std::string killedText(const std::string& command, char filler, std::size_t size) {
    const std::string start = "Process " + command + " was killed after timeout\nstdout+err:\n";
    return start + std::string(size - start.size() - 1, filler) + "\n";
}

TEST_P(BinaryDebugFrameTest, TheTextIsCutToWhatAFrameTakes) {
    const Row row = GetParam();
    const std::string blank = "printf %0---d 0; exec sleep 1000";
    const std::size_t output = killedText(blank, '0', 300).find("\n0") + 1;
    const std::string digits = std::to_string(row.textSize - output - 1);
    const std::string command =
        "printf %0" + std::string(3 - digits.size(), '0') + digits + "d 0; exec sleep 1000";
    const std::string text = killedText(command, '0', row.textSize);
    ASSERT_EQ(text.size(), row.textSize);

    const std::string request = execRequest(kLimit, command);
    const std::string debug = std::string(1, static_cast<char>(row.frameSize)) + "d" +
                              text.substr(0, std::min(row.textSize, kLongestText));
    ASSERT_EQ(debug.size(), row.frameSize);
    expectExchange(request, debug + errorFrame(request));
}

INSTANTIATE_TEST_SUITE_P(Lengths, BinaryDebugFrameTest,
                         testing::Values(Row{251, 253}, Row{252, 254}, Row{253, 255}, Row{254, 255},
                                         Row{300, 255}),
                         testing::PrintToStringParamName());

} // namespace
