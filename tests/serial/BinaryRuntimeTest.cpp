#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "line/BinaryLink.h"
#include "support/Pattern.h"

namespace {

using namespace std::string_literals;

/// How long a command may run before it is remarked on.
class BinaryRuntimeTest : public testing::Test {
protected:
    void SetUp() override {
        EXPECT_EQ(adapter.receive(24), statusFrame(daemon.buildStamp(), false));
        adapter.send(kAcknowledgement);
    }

    void expectExchange(const std::string& request, const std::string& frames) {
        adapter.send(std::string(request).append(kAcknowledgement));
        EXPECT_EQ(adapter.receive(frames.size()), frames);
    }

    /// Nothing is remarked on once more.
    void expectServedInTime() {
        expectExchange(std::string(kStatusRequest), statusFrame(daemon.buildStamp(), true));
        adapter.waitUntilTaken();
    }

    static void expectRemark(const std::string& line) {
        EXPECT_TRUE(
            matchesWhole(line, "### ATTENTION: Command-Runtime for \"c\": ([89]|[1-9][0-9])[0-9]{3} ms"))
            << line;
    }

    Adapter adapter;
    Daemon daemon{withStationLine()};
};

TEST_F(BinaryRuntimeTest, ALongCommandIsRemarkedOnByItsName) {
    const std::string request = execRequest(60, "sleep 8; echo done");
    expectExchange(request, answerFrame(request, "done\n"));
    expectServedInTime();
    const std::vector<std::string> lines = errorLines(daemon, 1);
    ASSERT_EQ(lines.size(), 1U);
    expectRemark(lines.front());
}

TEST_F(BinaryRuntimeTest, ItsDebugFrameIsNot) {
    const std::string request = execRequest(8, "sleep 1000");
    expectExchange(request,
                   refusal(request, "Process sleep 1000 was killed after timeout\nstdout+err:\n\n"));
    expectServedInTime();
    const std::vector<std::string> lines = errorLines(daemon, 1);
    ASSERT_EQ(lines.size(), 1U);
    expectRemark(lines.front());
}

TEST_F(BinaryRuntimeTest, AWaitingLineIsNoRuntime) {
    expectServedInTime();
    EXPECT_TRUE(adapter.isSilentFor(std::chrono::seconds(8)));
    // A short one: on a busy machine it may take some seconds all the same.
    const std::string request = execRequest(60, "echo done");
    expectExchange(request, answerFrame(request, "done\n"));
    expectServedInTime();
    EXPECT_EQ(errorLines(daemon), std::vector<std::string>());
}

} // namespace
