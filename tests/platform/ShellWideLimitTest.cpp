// Limits of which a machine with narrow longs could lose the upper bits.
#include <cstdint>
#include <limits>

#include "support/ShellFixture.h"

using System::ShellOutcome;
using namespace std::chrono_literals;

namespace {

using ShellWideLimitTest = ShellFixture;

// In 32 bits, each of them is a millisecond or less.
constexpr std::chrono::nanoseconds kLimits[] = {
    std::chrono::nanoseconds(std::int64_t{1} << 36) + 1ms, // over a minute
    std::chrono::milliseconds(std::int64_t{1} << 32),      // as poll counts: 49 days
    std::chrono::milliseconds((std::int64_t{1} << 32) + 1),
    std::chrono::seconds(std::int64_t{1} << 32), // 136 years
    std::chrono::nanoseconds(std::numeric_limits<std::int64_t>::max()),
};

} // namespace

TEST_F(ShellWideLimitTest, AreKept) {
    for (const std::chrono::nanoseconds limit : kLimits) {
        SCOPED_TRACE(limit.count());
        const ShellRun shell = run("sleep 0.2; echo end\n", limit);
        EXPECT_EQ(shell.result.outcome, ShellOutcome::Ended);
        EXPECT_EQ(shell.output, "end\n");
    }
}
