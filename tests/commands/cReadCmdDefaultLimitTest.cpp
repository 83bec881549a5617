#include <chrono>

#include "commands/cReadCmd.h"
#include "support/UnitFixture.h"

class cReadCmdDefaultLimitTest : public UnitFixture {};

TEST_F(cReadCmdDefaultLimitTest, ALimitOfZeroIsFiveSeconds) {
    const auto begin = std::chrono::steady_clock::now();
    const Response response(cReadCmd::getInstance()->executeCommand(0, "sleep 1000"));
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(response->code, kGenericError);
    EXPECT_EQ(response->message, "Process sleep 1000 was killed after timeout\nstdout+err:\n\n");
    EXPECT_GE(took, std::chrono::seconds(5));
    EXPECT_LT(took, std::chrono::seconds(40));
}

TEST_F(cReadCmdDefaultLimitTest, ALimitThatOverflowsToZeroIsFiveSecondsToo) {
    // 2^55 times 10^9 is a multiple of 2^64.
    const unsigned long long seconds = 1ULL << 55;
    const auto begin = std::chrono::steady_clock::now();
    const Response response(cReadCmd::getInstance()->executeCommand(seconds, "sleep 1000"));
    EXPECT_EQ(response->code, kGenericError);
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(took, std::chrono::seconds(5));
    EXPECT_LT(took, std::chrono::seconds(40));
}
