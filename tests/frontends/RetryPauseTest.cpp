#include "frontends/RetryPause.h"

#include <gmock/gmock.h>

#include <vector>

#include "support/Pauses.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class RetryPauseTest : public ::testing::Test {
protected:
    std::vector<int> waitTimes(int times) {
        for (int count = 0; count < times; ++count)
            m_pause.wait();
        return m_pauses.take();
    }

    Pauses m_pauses;
    RetryPause m_pause;
};

} // namespace

TEST_F(RetryPauseTest, TheFirstFailureIsRetriedAtOnce) {
    EXPECT_THAT(waitTimes(1), IsEmpty());
}

TEST_F(RetryPauseTest, EachFurtherPauseIsTwiceAsLongUpToTheLongest) {
    EXPECT_THAT(waitTimes(11), ElementsAre(10, 20, 40, 80, 160, 320, 640, 1000, 1000, 1000));
}

TEST_F(RetryPauseTest, TheNextFailureAfterAResetIsANewOne) {
    EXPECT_THAT(waitTimes(4), ElementsAre(10, 20, 40));
    m_pause.reset();
    EXPECT_THAT(waitTimes(3), ElementsAre(10, 20));
}

TEST_F(RetryPauseTest, AResetOfAFreshPauseChangesNothing) {
    m_pause.reset();
    EXPECT_THAT(waitTimes(2), ElementsAre(10));
}
