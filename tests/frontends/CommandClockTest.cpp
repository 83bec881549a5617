#include "frontends/CommandClock.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/Clock.h"
#include "support/ErrorOutput.h"

namespace {

class CommandClockTest : public ::testing::Test {
protected:
    std::string warning(const char* command = "status") const {
        return errorOutputOf([&] { m_command.warnIfLong(command); });
    }

    Clock m_clock;
    CommandClock m_command;
};

} // namespace

TEST_F(CommandClockTest, TimeIsRoundedToTheNearestMillisecond) {
    const std::pair<std::int64_t, std::uint64_t> rows[] = {
        {0, 0},           {1, 0},           {499999, 0},       {500000, 0},      {500001, 1},
        {999999, 1},      {1000000, 1},     {1500000, 1},      {1500001, 2},     {998500000, 998},
        {998500001, 999}, {999500000, 999}, {999500001, 1000}, {999999999, 1000}};
    for (const auto& [nanoseconds, milliseconds] : rows) {
        m_clock.set(0, nanoseconds);
        EXPECT_EQ(m_command.elapsedMs(), milliseconds) << nanoseconds;
        m_clock.set(7, nanoseconds);
        EXPECT_EQ(m_command.elapsedMs(), 7000 + milliseconds) << nanoseconds;
    }
}

TEST_F(CommandClockTest, TheStartIsRoundedAsWell) {
    m_clock.set(10, 500001); // 10001 ms
    m_command.start();
    m_clock.set(10, 500000); // 10000 ms
    EXPECT_EQ(m_command.elapsedMs(), 0U) << "never less than nothing";
    m_clock.set(11, 500000);
    EXPECT_EQ(m_command.elapsedMs(), 999U);
    m_clock.set(11, 500001);
    EXPECT_EQ(m_command.elapsedMs(), 1000U);
}

TEST_F(CommandClockTest, ItCountsFromTheLastStart) {
    m_clock.setMs(100000);
    m_command.start();
    m_clock.setMs(100250);
    EXPECT_EQ(m_command.elapsedMs(), 250U);
    m_command.start();
    EXPECT_EQ(m_command.elapsedMs(), 0U);
    m_clock.setMs(100260);
    EXPECT_EQ(m_command.elapsedMs(), 10U);
}

TEST_F(CommandClockTest, WithoutACommandItCountsFromTheClocksOwnStart) {
    m_clock.setMs(5000000);
    EXPECT_EQ(m_command.elapsedMs(), 5000000U);
    m_command.start();
    m_command.reset();
    EXPECT_EQ(m_command.elapsedMs(), 5000000U);
    EXPECT_EQ(warning(), "Prod.testserver: ### ATTENTION: Command-Runtime for \"status\": 5000000 ms\n");
}

TEST_F(CommandClockTest, SevenAndAHalfSecondsAreNotLong) {
    m_clock.setMs(1000);
    m_command.start();
    for (const int elapsed : {0, 1, 7499, 7500}) {
        m_clock.setMs(1000 + elapsed);
        EXPECT_EQ(warning(), "") << elapsed;
    }
}

TEST_F(CommandClockTest, AMillisecondMoreIsLong) {
    m_clock.setMs(1000);
    m_command.start();
    m_clock.setMs(8501);
    EXPECT_EQ(warning("c"), "Prod.testserver: ### ATTENTION: Command-Runtime for \"c\": 7501 ms\n");
}

TEST_F(CommandClockTest, HalfAMillisecondMoreIsNotLongYet) {
    m_clock.setMs(1000);
    m_command.start();
    m_clock.set(8, 500500000);
    EXPECT_EQ(warning(), "");
    m_clock.set(8, 500500001);
    EXPECT_EQ(warning(), "Prod.testserver: ### ATTENTION: Command-Runtime for \"status\": 7501 ms\n");
}

TEST_F(CommandClockTest, ACommandsNameIsTextAndNoFormat) {
    m_command.start();
    m_clock.setMs(20000);
    EXPECT_EQ(warning("%s%n"),
              "Prod.testserver: ### ATTENTION: Command-Runtime for \"%s%n\": 20000 ms\n");
    EXPECT_EQ(warning("?"), "Prod.testserver: ### ATTENTION: Command-Runtime for \"?\": 20000 ms\n");
    EXPECT_EQ(warning(""), "Prod.testserver: ### ATTENTION: Command-Runtime for \"\": 20000 ms\n");
}

TEST_F(CommandClockTest, ALongTimeIsWrittenOut) {
    m_command.start();
    m_clock.set(2000000000, 0);
    EXPECT_EQ(warning(),
              "Prod.testserver: ### ATTENTION: Command-Runtime for \"status\": 2000000000000 ms\n");
}

TEST_F(CommandClockTest, AClockThatCannotBeReadShowsNothing) {
    m_clock.breakDown();
    EXPECT_EQ(m_command.elapsedMs(), 0U);
    m_clock.setMs(10000);
    m_command.start();
    m_clock.breakDown();
    EXPECT_EQ(m_command.elapsedMs(), 0U);
    EXPECT_EQ(warning(), "");
}

TEST_F(CommandClockTest, AStartThatCannotBeReadIsTheClocksOwn) {
    m_clock.breakDown();
    m_command.start();
    m_clock.setMs(9000);
    EXPECT_EQ(m_command.elapsedMs(), 9000U);
}
