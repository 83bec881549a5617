// Answers of a size that takes long to send, to a station that reads them as fast as it can.
#include <gtest/gtest.h>

#include <string>

#include "support/DaemonTest.h"
#include "support/StatusWatch.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

constexpr std::size_t kHuge = std::size_t{kSanitized ? 30 : 150} << 20;

class HugeAnswerTest : public DaemonTest {
protected:
    /// From the first byte of the answer to its last.
    static void expectOthersAreServedDuring(const std::string& asked, std::size_t atLeast) {
        const std::string status = undisturbedStatus();
        expectStatusInTime([&] {
            Connection reader;
            reader.send(asked);
            EXPECT_TRUE(reader.hasInputWithin(kPatience));
            StatusWatch watch(status);
            EXPECT_EQ(reader.receive(atLeast).size(), atLeast);
            EXPECT_TRUE(watch.seesMore(1));
            return watch.longestDelay();
        });
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
