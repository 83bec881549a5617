#include "terminal/TerminalOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "FailureKind.h"

namespace station {
namespace {

using testing::HasSubstr;

using Words = std::vector<std::string>;

TerminalOrder parsed(Words words) {
    words.insert(words.begin(), "terminal");
    std::ostringstream help;
    const auto order = parseTerminalOrder(words, help);
    EXPECT_EQ(help.str(), "");
    EXPECT_TRUE(order);
    return order.value_or(TerminalOrder{});
}

TEST(TerminalOrder, LeavesTheUnitsOwnWordsAlone) {
    EXPECT_TRUE(isTerminal("serial", {"terminal"}));
    EXPECT_TRUE(isTerminal("serial", {"terminal", "1"}));
    EXPECT_FALSE(isTerminal("serial", {}));
    EXPECT_FALSE(isTerminal("serial", {"open", "terminal"}));
    EXPECT_FALSE(isTerminal("serial", {"terminals"}));
    EXPECT_FALSE(isTerminal("exec", {"terminal"}));
}

TEST(TerminalOrder, HasTheUsualSettings) {
    const TerminalOrder order = parsed({"1"});
    EXPECT_EQ(order.channel, 1U);
    EXPECT_EQ(order.baud, 115200U);
    EXPECT_EQ(order.flags, 0U);
}

TEST(TerminalOrder, ReadsItsOptions) {
    const TerminalOrder order = parsed({"--baud", "0x2580", "010", "--flags=255"});
    EXPECT_EQ(order.channel, 8U);
    EXPECT_EQ(order.baud, 9600U);
    EXPECT_EQ(order.flags, 255U);
}

TEST(TerminalOrder, RefusesWhatCannotBeFollowed) {
    const auto expectRefused = [](const Words& words, const std::string& message) {
        EXPECT_THAT(failureOf([&] { parsed(words); }),
                    FailsWith(Failure::Kind::InvalidRequest, message));
    };
    expectRefused({}, "CHANNEL");
    expectRefused({"1", "2"}, "Run with serial terminal --help");
    expectRefused({"1", "--parity", "even"}, "--parity");
    expectRefused({"x"}, "invalid channel 'x': expected 0 to 239");
    expectRefused({"240"}, "invalid channel '240'");
    expectRefused({"1", "--baud", "fast"}, "invalid baud 'fast'");
    expectRefused({"1", "--baud", "4294967296"}, "invalid baud '4294967296'");
    expectRefused({"1", "--flags", "256"}, "invalid flags '256': expected 0 to 255");
    expectRefused({"1", "--flags=-1"}, "invalid flags '-1'");
}

TEST(TerminalOrder, ShowsItsHelp) {
    std::ostringstream help;
    EXPECT_FALSE(parseTerminalOrder({"terminal", "--help"}, help));
    EXPECT_THAT(help.str(), HasSubstr("serial terminal"));
    EXPECT_THAT(help.str(), HasSubstr("--baud B"));
    EXPECT_THAT(help.str(), HasSubstr("--flags F"));
}

} // namespace
} // namespace station
