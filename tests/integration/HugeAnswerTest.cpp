// Answers of a size that takes long to send, to a station that reads them as fast as it can.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

constexpr std::size_t kHuge = std::size_t{kSanitized ? 30 : 150} << 20;
constexpr std::chrono::milliseconds kLongest{kSanitized ? 1000 : 100};
// On a busy machine the one who asks may have to wait for its turn.
constexpr int kAttempts = 5;

class HugeAnswerTest : public DaemonTest {
protected:
    /// From the first byte of the answer to its last.
    static void expectOthersAreServedDuring(const std::string& asked, std::size_t atLeast) {
        std::chrono::milliseconds delay{};
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            Connection reader;
            reader.send(asked);
            ASSERT_TRUE(reader.hasInputWithin(kPatience));
            const Witness witness;
            ASSERT_EQ(reader.receive(atLeast).size(), atLeast);
            ASSERT_TRUE(witness.seesMore(1));
            delay = witness.longestDelay();
            if (delay <= kLongest)
                return;
        }
        EXPECT_LE(delay, kLongest) << "each time";
    }
};

TEST_F(HugeAnswerTest, OfAFileIsSentWhileOthersAreServed) {
    writeFile(kImageVersionFile, std::string(kHuge, 'x'));
    expectOthersAreServedDuring(request("status 01"), kHuge);
}

TEST_F(HugeAnswerTest, OfAKilledCommandIsSentWhileOthersAreServed) {
    expectOthersAreServedDuring(
        request("exec command 5 \"yes | head -c " + std::to_string(kHuge) + "; sleep 1000\""),
        kHuge / 10);
}

} // namespace
