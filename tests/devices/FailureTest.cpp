// Each step of opening and closing that the system may refuse.
#include "support/DriverFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class FailureTest : public DriverFixture {};

struct OpeningStep {
    const char* function;
    int error;
    const char* lead;
};

constexpr OpeningStep kSteps[] = {
    {"tcgetattr", EIO, "Failed get original Device Attributes of "},
    {"cfsetospeed", EINVAL, "Failed to set output speed for"},
    {"cfsetispeed", EINVAL, "Failed to set input speed for "},
    {"makeRaw", ENOSYS, "Failed to set RAW mode for "},
    {"tcsetattr", EPERM, "Failed to set parameters for "},
};

} // namespace

TEST_P(FailureTest, AnyStepThatFailsIsToldAndLeavesTheDriverClosed) {
    for (const OpeningStep& step : kSteps) {
        m_calls.failNext(step.function, step.error);
        EXPECT_THAT(openDriver(), isFailure(step.error, textFor(step.lead, step.error)));
        EXPECT_FALSE(isOpen()) << step.function;
        EXPECT_THAT(m_line.opened(), IsEmpty()) << step.function;
    }
    EXPECT_THAT(openDriver(), isSuccess());
}

TEST_P(FailureTest, AStepThatFailsLaterPutsTheSettingsBack) {
    const termios before = m_line.attributes();
    for (const char* function : {"cfsetospeed", "cfsetispeed", "makeRaw", "tcsetattr"}) {
        m_calls.failNext(function, EINVAL);
        EXPECT_EQ(openDriver().code, EINVAL) << function;
        EXPECT_TRUE(sameAttributes(m_calls.lastSet, before)) << function;
        EXPECT_TRUE(sameAttributes(m_line.attributes(), before)) << function;
    }
}

TEST_P(FailureTest, ASignalWhileTheSettingsAreMadeIsNoFailure) {
    const termios before = m_line.attributes();
    m_calls.failNext("tcsetattr", EINTR);
    EXPECT_THAT(openDriver(), isSuccess());
    m_calls.failNext("tcsetattr", EINTR);
    EXPECT_THAT(m_driver->close(), isSuccess());
    EXPECT_TRUE(sameAttributes(m_line.attributes(), before));
}

TEST_P(FailureTest, AStepThatFailsEndsTheOpening) {
    m_calls.failNext("cfsetospeed", EINVAL);
    EXPECT_EQ(openDriver().code, EINVAL);
    EXPECT_THAT(m_calls.all(), ElementsAre("tcgetattr", "cfsetospeed", "tcsetattr"));
}

TEST_P(FailureTest, TheTextForTheOutputSpeedRunsIntoThePath) {
    m_calls.failNext("cfsetospeed", EINVAL);
    EXPECT_THAT(openDriver(),
                isFailure(22, "Failed to set output speed for" + m_line.path() + ": Invalid argument"));
}

TEST_P(FailureTest, TheFirstFailureIsToldWhenTheClosingFailsToo) {
    m_calls.failNext("cfsetispeed", EINVAL);
    m_calls.failNext("tcsetattr", EIO);
    EXPECT_THAT(openDriver(), isFailure(EINVAL, textFor("Failed to set input speed for ", EINVAL)));
    EXPECT_THAT(m_line.opened(), IsEmpty());
}

TEST_P(FailureTest, ALineThatCannotBeFlushedIsOpenAllTheSame) {
    m_calls.failNext(usesStream() ? "fflush" : "tcflush", EIO);
    EXPECT_THAT(openDriver(), isSuccess());
    EXPECT_TRUE(isOpen());
}

TEST_P(FailureTest, ALineThatHasGoneCannotBeOpened) {
    m_line.hangUp();
    EXPECT_THAT(openDriver(), isFailure(ENOENT, textFor("Failed to open Device ", ENOENT)));
    EXPECT_FALSE(isOpen());
}

TEST_P(FailureTest, ClosingAClosedDriverSucceedsAndTouchesNothing) {
    EXPECT_THAT(m_driver->close(), isSuccess());
    EXPECT_THAT(m_calls.all(), IsEmpty());
}

TEST_P(FailureTest, ClosingTwiceSucceeds) {
    ASSERT_THAT(openDriver(), isSuccess());
    EXPECT_THAT(m_driver->close(), isSuccess());
    m_calls.forget();
    EXPECT_THAT(m_driver->close(), isSuccess());
    EXPECT_THAT(m_calls.all(), IsEmpty());
    EXPECT_FALSE(isOpen());
}

TEST_P(FailureTest, ADeviceWhoseSettingsCannotBePutBackIsClosedAllTheSame) {
    ASSERT_THAT(openDriver(), isSuccess());
    m_calls.failNext("tcsetattr", EACCES);
    EXPECT_THAT(m_driver->close(),
                isFailure(EACCES, textFor("Failed to reset old Attribute for ", EACCES)));
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(m_line.opened(), IsEmpty());
    EXPECT_THAT(m_driver->close(), isSuccess());
}

TEST_P(FailureTest, ClosingALineThatHasHungUpTellsSo) {
    ASSERT_THAT(openDriver(), isSuccess());
    m_line.hangUp();
    EXPECT_THAT(m_driver->close(), isFailure(EIO, textFor("Failed to reset old Attribute for ", EIO)));
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(m_line.opened(), IsEmpty());
}

WITH_BOTH_DRIVERS(FailureTest);
