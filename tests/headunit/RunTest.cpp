#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <sstream>
#include <string>

#include "support/HeadunitTest.h"

namespace headunit_test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using RunTest = HeadunitTest;

TEST_F(RunTest, SaysWhereToReachTheUnitAndStopsOnASignal) {
    for (const int stop : {SIGINT, SIGTERM}) {
        Program program(runStandIn(), surroundings());
        ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
        ASSERT_EQ(m_temporary.names().size(), 1u);
        const std::string unit = m_temporary / m_temporary.names().front();
        const std::string programs = fs::path(HEADUNIT_PROGRAM).parent_path().string();
        std::ostringstream expected;
        expected << "\nunit    " << unit << "\ntcp     tcp:127.0.0.1:15051\nserial  serial:"
                 << fs::read_symlink(unit + "/run/headunit/station-line").string() << "\ntry     "
                 << programs << "/station status\ncontrol " << programs << "/headunit control --unit "
                 << unit << " state\nstop    Ctrl-C\n";
        EXPECT_EQ(program.output(), expected.str());
        EXPECT_EQ(contentOf(unit + "/dev/nvsku/rev"), "1A\n");
        EXPECT_EQ(contentOf(unit + "/dev/nvgpio/usb_pwr_0"), "1");
        program.signal(stop);
        EXPECT_EQ(program.wait(), 0);
        EXPECT_EQ(program.error(), "stand-in: started\n");
        EXPECT_THAT(m_temporary.names(), IsEmpty());
    }
}

TEST_F(RunTest, KeepsAGivenFolder) {
    Program program(runStandIn({"--unit", m_temporary / "unit"}), surroundings());
    ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
    EXPECT_THAT(program.output(), HasSubstr("unit    " + (m_temporary / "unit") + "\n"));
    stop(program);
    EXPECT_THAT(m_temporary.names(), ElementsAre("unit"));
    EXPECT_EQ(contentOf(m_temporary / "unit/dev/nvsku/rev"), "1A\n");
}

TEST_F(RunTest, EndsWhenTheDaemonDies) {
    Program program(runStandIn({"--unit", m_temporary / "unit"}), surroundings());
    ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
    writeFile(m_temporary / "unit/tmp/end", "");
    EXPECT_EQ(program.wait(), 1);
    EXPECT_EQ(program.error(), "stand-in: started\nheadunit: the daemon ended with status 3\n");
}

TEST_F(RunTest, EndsWhenTheDaemonDoesNotStart) {
    EXPECT_EQ(
        outcomeOf(run({"--daemon-path", "/bin/false"})),
        (Outcome{1, "", "headunit: the daemon ended with status 1 before it listened on port 15051\n"}));
    EXPECT_THAT(m_temporary.names(), IsEmpty());
}

TEST_F(RunTest, RefusesWhenThePortIsTaken) {
    const std::string script = std::string(HEADUNIT_PROGRAM) + " run --daemon-path " + STANDIN_DAEMON +
                               " --unit " + (m_temporary / "first") + " | { read unit; " +
                               HEADUNIT_PROGRAM + " run --daemon-path " + STANDIN_DAEMON +
                               "; echo status $?; " + ": > " + (m_temporary / "first/tmp/end") +
                               "; cat > /dev/null; }";
    Program program({PRIVATE_HOST, "sh", "-c", script}, surroundings());
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.output(), "status 1\n");
    EXPECT_THAT(program.error(), HasSubstr("headunit: port 15051 of 127.0.0.1 is taken: another unit or "
                                           "daemon runs on this machine\n"));
    EXPECT_THAT(m_temporary.names(), ElementsAre("first"));
}

TEST_F(RunTest, SaysThatThereIsNoDaemon) {
    const Outcome outcome = outcomeOf(run({"--daemon-path", "/none/such"}));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("there is no daemon at /none/such"));
}

TEST_F(RunTest, TakesTheDaemonAlongWhenItIsKilled) {
    Program program(runStandIn(), surroundings());
    ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
    program.signal(SIGKILL);
    EXPECT_EQ(program.wait(), 128 + SIGKILL);
}

TEST_F(RunTest, InPlaceWantsToBeToldTwice) {
    EXPECT_EQ(
        outcomeOf(runStandIn({"--in-place"})),
        (Outcome{
            1, "",
            "headunit: --in-place makes device nodes and files in /dev, /mnt/app, /ifs and /vrk of this "
            "machine itself; it is for disposable containers. Add --yes-change-this-machine when this is one\n"}));
}

TEST_F(RunTest, InPlaceWantsRoot) {
    EXPECT_EQ(outcomeOf(runStandIn({"--in-place", "--yes-change-this-machine"}, {"--uid", "1000"})),
              (Outcome{1, "", "headunit: --in-place needs root to make nodes in /dev\n"}));
}

TEST_F(RunTest, InPlaceSetsTheMachineUpAndPutsItBack) {
    const TestFolder root;
    Program program(inPlace(root));
    ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
    EXPECT_THAT(program.output(), HasSubstr("unit    this machine\ntcp     tcp:127.0.0.1:15051\n"));
    EXPECT_EQ(contentOf(root / "dev/nvsku/rev"), "1A\n");
    EXPECT_EQ(contentOf(root / "ifs/version_info.txt").substr(0, 10), "component:");
    EXPECT_EQ(contentOf(root / "dev/nvgpio/usb_pwr_0"), "1");
    EXPECT_TRUE(fs::is_symlink(root / "vrk/bin/apps/showimage"));
    stop(program);
    EXPECT_THAT(namesIn(root / "dev"), ElementsAre("ptmx", "pts"));
    EXPECT_TRUE(fs::is_empty(root / "run"));
    EXPECT_FALSE(fs::exists(root / "mnt"));
    EXPECT_FALSE(fs::exists(root / "ifs"));
    EXPECT_FALSE(fs::exists(root / "vrk"));
}

TEST_F(RunTest, InPlaceOverwritesNothing) {
    const TestFolder root;
    fs::create_directories(root / "mnt/app");
    writeFile(root / "mnt/app/img_ver.txt", "theirs\n");
    EXPECT_EQ(outcomeOf(inPlace(root)),
              (Outcome{1, "",
                       "headunit: software versions: /mnt/app/img_ver.txt exists on this machine and is "
                       "not the unit's; it is left as it is\n"}));
    EXPECT_EQ(contentOf(root / "mnt/app/img_ver.txt"), "theirs\n");
    EXPECT_THAT(namesIn(root / "dev"), ElementsAre("ptmx", "pts"));
    EXPECT_TRUE(fs::is_empty(root / "run"));
}

TEST_F(RunTest, InPlaceClearsUpAfterAKilledOne) {
    const TestFolder root;
    const Words command = inPlace(root);
    Program killed(command);
    ASSERT_TRUE(killed.waitForOutput("Ctrl-C\n")) << killed.error();
    killed.signal(SIGKILL);
    EXPECT_EQ(killed.wait(), 128 + SIGKILL);
    EXPECT_TRUE(fs::exists(root / "dev/nvsku/rev"));

    Program next(command);
    ASSERT_TRUE(next.waitForOutput("Ctrl-C\n")) << next.error();
    next.signal(SIGINT);
    EXPECT_EQ(next.wait(), 0);
    EXPECT_THAT(namesIn(root / "dev"), ElementsAre("ptmx", "pts"));
}

} // namespace
} // namespace headunit_test
