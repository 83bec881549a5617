#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>

#include "support/HeadunitTest.h"
#include "support/Waiting.h"

namespace headunit_test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kState[] = "headunit control state | tail -n 1";

/// The finished programs in a unit; each case has a TMPDIR of its own.
class AudioTest : public HeadunitTest {
protected:
    /// Waits in a script until the driver has this state.
    static std::string until(const std::string& state) {
        return "until " + std::string(kState) + " | grep -q ' " + state + "$'; do :; done; ";
    }

    std::string outputWithDaemon(const std::string& script) {
        return outputOf(script, {"--daemon", "--daemon-path", STANDIN_DAEMON});
    }

    void TearDown() override { EXPECT_THAT(m_temporary.names(), IsEmpty()); }
};

TEST_F(AudioTest, TheDriverRunsWithTheDaemon) {
    EXPECT_EQ(outputWithDaemon(kState), "audio deva-nvaudio inactive\n");
    EXPECT_EQ(outputOf(kState), "audio deva-nvaudio stopped\n");
}

TEST_F(AudioTest, TheDriverFollowsSignals) {
    EXPECT_EQ(outputWithDaemon("slay -s SIGUSR1 deva-nvaudio; echo $?; " + until("active") +
                               "slay -s SIGUSR2 deva-nvaudio; echo $?; " + until("inactive") +
                               "slay deva-nvaudio; echo $?; " + until("stopped") +
                               "slay -s SIGUSR1 deva-nvaudio; echo $?"),
              "1\n1\n1\n0\n");
}

TEST_F(AudioTest, TheDriverIsControlled) {
    EXPECT_EQ(outputWithDaemon("headunit control audio active; " + until("active") +
                               "headunit control audio inactive; " + until("inactive") +
                               "headunit control audio stopped; " + until("stopped") +
                               "headunit control audio active 2>&1; deva-nvaudio; " + kState),
              "ok\nok\nok\nheadunit: the audio driver does not run\naudio deva-nvaudio inactive\n");
}

TEST_F(AudioTest, ThereIsOneDriver) {
    EXPECT_EQ(outputWithDaemon("deva-nvaudio; echo $?; slay -s 0 deva-nvaudio; echo $?"), "1\n1\n");
    EXPECT_THAT(m_error, HasSubstr("deva-nvaudio: another audio driver runs "
                                   "(/run/headunit/audio is locked)\n"));
}

TEST_F(AudioTest, SlayCountsTheProcessesOfAName) {
    EXPECT_EQ(outputOf("sleep 1000 & sleep 1000 & sleep 1000 & "
                       "until slay -s 0 sleep; [ $? = 3 ]; do :; done; "
                       "slay -s SIGTERM sleep; echo $?; wait; slay -s SIGTERM sleep; echo $?"),
              "3\n0\n");
    EXPECT_EQ(m_error, "");
}

TEST_F(AudioTest, SlayDoesNotReachOutOfTheUnit) {
    Program outside({"sleep", "1000"});
    EXPECT_EQ(outputOf("slay -s SIGKILL sleep; echo $?"), "0\n");
    EXPECT_EQ(::kill(outside.pid(), 0), 0);
    outside.signal(SIGTERM);
    EXPECT_EQ(outside.wait(), 128 + SIGTERM) << "and not SIGKILL";
}

TEST_F(AudioTest, SlayExplainsItself) {
    for (const char* words : {"", "-s", "-s SIGUSR1", "-s SIGNONE name", "a b", "-x"}) {
        EXPECT_EQ(outputOf(std::string("slay ") + words + "; echo $?"), "0\n") << words;
        EXPECT_THAT(m_error, HasSubstr("usage: slay [-s SIGNAL] NAME\n")) << words;
    }
}

TEST_F(AudioTest, TheDriverRunsBesideARunningDaemon) {
    const TestFolder folder;
    const std::string unit = folder / "unit";
    Program program(runStandIn({"--unit", unit, "--insert", "sda0"}), surroundings());
    ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
    const auto control = [&](const Words& words) {
        const Outcome asked = outcomeOf(joined({HEADUNIT_PROGRAM, "control", "--unit", unit}, words));
        EXPECT_EQ(asked.exitCode, 0) << asked.errors;
        return asked.output;
    };
    EXPECT_THAT(control({"state"}), HasSubstr("sda0 /dev/sda0 inserted\n"));
    EXPECT_THAT(control({"state"}), HasSubstr("audio deva-nvaudio inactive\n"));
    EXPECT_EQ(control({"audio", "active"}), "ok\n");
    EXPECT_TRUE(eventually(
        [&] { return control({"state"}).find("audio deva-nvaudio active\n") != std::string::npos; }));
    stop(program);
    EXPECT_TRUE(fs::is_empty(unit + "/run/headunit"));
}

TEST_F(AudioTest, TheDriverRunsInPlace) {
    const TestFolder root;
    Program program(inPlace(root));
    ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
    EXPECT_EQ(contentOf(root / "run/headunit/audio").substr(0, 9), "inactive ");
    EXPECT_TRUE(fs::is_socket(root / "dev/i2c0"));
    EXPECT_EQ(fs::file_size(root / "dev/umass/umass0"), 64u * 1024 * 1024);
    stop(program);
    EXPECT_FALSE(fs::exists(root / "dev/umass"));
    EXPECT_TRUE(fs::is_empty(root / "run"));
}

} // namespace
} // namespace headunit_test
