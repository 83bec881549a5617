#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "support/DaemonTest.h"

namespace {

using Clock = std::chrono::steady_clock;

class LongLimitTest : public DaemonTest {};

TEST_F(LongLimitTest, NoLimitIsFiveSeconds) {
    for (const char* limit : {"0", "none"}) {
        SCOPED_TRACE(limit);
        Connection station;
        const auto start = Clock::now();
        expectExchange(station, request("exec command " + std::string(limit) + " \"sleep 1000\""),
                       failure("exec", "Process sleep 1000 was killed after timeout\nstdout+err:\n\n"));
        EXPECT_GE(Clock::now() - start, std::chrono::seconds(5));
        EXPECT_LT(Clock::now() - start, std::chrono::seconds(30));
    }
}

} // namespace
