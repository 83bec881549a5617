#include <chrono>

#include "commands/cReadCmd.h"
#include "support/UnitFixture.h"

using cReadCmdDefaultLimitTest = UnitFixture;

TEST_F(cReadCmdDefaultLimitTest, ALimitOfZeroOrThatOverflowsToItIsFiveSeconds) {
    // 2^55 times 10^9 is a multiple of 2^64.
    for (const unsigned long long seconds : {0ULL, 1ULL << 55}) {
        SCOPED_TRACE(seconds);
        const auto begin = std::chrono::steady_clock::now();
        const Response response(cReadCmd::getInstance()->executeCommand(seconds, "sleep 1000"));
        const auto took = std::chrono::steady_clock::now() - begin;
        expectError(response, kGenericError,
                    "Process sleep 1000 was killed after timeout\nstdout+err:\n\n");
        EXPECT_GE(took, std::chrono::seconds(5));
        EXPECT_LT(took, std::chrono::seconds(40));
    }
}
