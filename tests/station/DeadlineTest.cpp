#include "client/Deadline.h"

#include <gtest/gtest.h>

#include <limits>

#include "FailureKind.h"

namespace station {
namespace {

using testing::Values;

struct Parsed {
    std::string text;
    double seconds;

    friend void PrintTo(const Parsed& row, std::ostream* out) {
        *out << testing::PrintToString(row.text);
    }
};

class TimeoutParses : public testing::TestWithParam<Parsed> {};

TEST_P(TimeoutParses, Text) {
    EXPECT_EQ(parseTimeout(GetParam().text).count(), GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(Text, TimeoutParses,
                         Values(Parsed{"30", 30}, Parsed{"2.5", 2.5}, Parsed{".5", 0.5},
                                Parsed{"0.001", 0.001}, Parsed{"1e3", 1000}, Parsed{"1e300", 1e300}));

class TimeoutRefuses : public testing::TestWithParam<std::string> {};

TEST_P(TimeoutRefuses, Text) {
    EXPECT_THAT(
        failureOf([] { parseTimeout(GetParam()); }),
        FailsWith(Failure::Kind::InvalidRequest, "invalid time-out '" + GetParam() + "': expected"));
}

INSTANTIATE_TEST_SUITE_P(Text, TimeoutRefuses,
                         Values("", "0", "0.0", "-0", "-1", "inf", "-inf", "nan", "1e999", "abc", "5s",
                                "1,5", " 5", "5 ", "+5", "0x10"));

TEST(Deadline, IsExpiredWhenNothingIsLeft) {
    const Deadline deadline = Deadline::after(Seconds(0));
    EXPECT_TRUE(deadline.expired());
    EXPECT_EQ(deadline.pollMilliseconds(), 0);
}

TEST(Deadline, LeavesWholeMillisecondsRoundedUp) {
    const Deadline deadline = Deadline::after(Seconds(3600));
    EXPECT_FALSE(deadline.expired());
    EXPECT_GT(deadline.pollMilliseconds(), 3500 * 1000);
    EXPECT_LE(deadline.pollMilliseconds(), 3600 * 1000);
}

TEST(Deadline, TakesTheLongestTimeoutThereIs) {
    const Deadline deadline = Deadline::after(Seconds(std::numeric_limits<double>::max()));
    EXPECT_FALSE(deadline.expired());
    EXPECT_EQ(deadline.pollMilliseconds(), std::numeric_limits<int>::max());
}

} // namespace
} // namespace station
