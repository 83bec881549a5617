#include <gmock/gmock.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "support/HeadunitTest.h"
#include "support/Rows.h"

namespace headunit_test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// Each case has a TMPDIR of its own, in which nothing may be left.
class ExecTest : public HeadunitTest {
protected:
    const Words kWithDaemon = {"--daemon", "--daemon-path", STANDIN_DAEMON};

    std::string outputOf(const std::string& script, const Words& options = {}) {
        return quietOutputOf(script, options);
    }

    void TearDown() override { EXPECT_THAT(m_temporary.names(), IsEmpty()); }
};

struct StatusCase {
    const char* title;
    std::vector<std::string> command;
    int status;
    const char* error;
};

void PrintTo(const StatusCase& row, std::ostream* out) {
    *out << row.title;
}

class ExecStatus : public ExecTest, public testing::WithParamInterface<StatusCase> {};

TEST_P(ExecStatus, IsTheCommands) {
    EXPECT_EQ(outcomeOf(exec(joined({"--"}, GetParam().command))),
              (Outcome{GetParam().status, "", GetParam().error}));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, ExecStatus,
    testing::Values(
        StatusCase{"success", {"true"}, 0, ""}, //
        StatusCase{"absolutePath", {"/bin/true"}, 0, ""}, StatusCase{"failure", {"false"}, 1, ""},
        StatusCase{"number", {"sh", "-c", "exit 42"}, 42, ""},
        StatusCase{"killed", {"sh", "-c", "kill -KILL $$"}, 128 + SIGKILL, ""},
        StatusCase{"notFound", {"no-such"}, 127, "headunit: no-such: No such file or directory\n"},
        StatusCase{"notExecutable", {"/etc"}, 126, "headunit: /etc: Permission denied\n"},
        StatusCase{"separatorInTheCommand", {"sh", "-c", "test \"$1\" = --", "x", "--"}, 0, ""}),
    titleOf);

TEST_F(ExecTest, PassesTheStandardStreamsThrough) {
    Program program(inShell("cat; echo wrong >&2"), surroundings());
    program.write(std::string("in\0put", 6));
    program.endInput();
    EXPECT_EQ(program.outcome(), (Outcome{0, std::string("in\0put", 6), "wrong\n"}));
}

TEST_F(ExecTest, PassesTheEnvironmentThrough) {
    Program::Surroundings given = surroundings();
    given.environment["FIRST_TIER_SUPPLIER"] = "a b";
    given.environment["LD_LIBRARY_PATH"] = "/none";
    Program program(inShell("echo \"$FIRST_TIER_SUPPLIER\" $TMPDIR $LD_LIBRARY_PATH; echo $PATH"),
                    given);
    EXPECT_EQ(program.wait(), 0);
    EXPECT_THAT(program.output(), StartsWith("a b /tmp /vrk/lib:/none\n" +
                                             fs::path(HEADUNIT_PROGRAM).parent_path().string() + ":"));
}

TEST_F(ExecTest, KeepsTheWorkingDirectoryWritable) {
    const TestFolder folder;
    Program::Surroundings given = surroundings();
    given.folder = folder.path();
    EXPECT_EQ(Program(inShell("pwd; echo made > file"), given).outcome(),
              (Outcome{0, folder.path() + "\n", ""}));
    EXPECT_EQ(contentOf(folder / "file"), "made\n");
}

TEST_F(ExecTest, FindsACommandInAFolderOfItsOwn) {
    const TestFolder folder;
    writeFile(folder / "script", "#!/bin/sh\necho ran\ntouch " + (folder / "mark") + " 2>&1\n");
    fs::permissions(folder / "script", fs::perms::owner_all);
    Program::Surroundings given = surroundings();
    given.folder = "/"; // the one of the test may be above the script's
    Program program(exec({"--", folder / "script"}), given);
    EXPECT_EQ(program.wait(), 1);
    EXPECT_THAT(program.output(), StartsWith("ran\n"));
    EXPECT_THAT(program.output(), HasSubstr("Read-only file system"));
}

TEST_F(ExecTest, FindsTheProgramsBesideHeadunit) {
    EXPECT_EQ(outputOf("command -v headunit"), std::string(HEADUNIT_PROGRAM) + "\n");
}

TEST_F(ExecTest, ShowsTheUnitsFilesAsTheyAre) {
    EXPECT_EQ(outputOf("cat /dev/nvsku/rev /dev/nvsku/serial_num /mnt/app/img_ver.txt"),
              "1A\n0323814000427\nHU-ECE-HIGH PAG 11.02.03\n");
    EXPECT_EQ(outputOf("cat /mnt/app/version_info.txt /ifs/version_info.txt"),
              "component: application\nversion: 11.02.03\nbuilt: 2012-11-05 17:42:10\n"
              "component: boot image\nversion: 4.17\nbuilt: 2012-10-22 09:15:36\n");
    EXPECT_EQ(outputOf("ls /dev/nvgpio | wc -l; cat /dev/nvgpio/usb_pwr_0 /dev/nvgpio/nad_reset"),
              "21\n10");
    EXPECT_EQ(outputOf("cd /vrk && ls -A . bin/apps lib"),
              ".:\nbin\nlib\n\nbin/apps:\ndmdt\nshowimage\n\nlib:\nmv8787bt.so\n");
    EXPECT_EQ(outputOf("stat -c %F /dev/shmem/mv8787wl /dev/sdio0 /dev/io-net/uap0"),
              "regular empty file\nsocket\nsocket\n");
}

TEST_F(ExecTest, LetsTheUnitWriteItsNodes) {
    EXPECT_EQ(outputOf("printf 0 > /dev/nvgpio/usb_pwr_0; cat /dev/nvgpio/usb_pwr_0"), "0");
    EXPECT_EQ(outputOf("cat /dev/nvgpio/usb_pwr_0"), "1");
}

TEST_F(ExecTest, HasTheStandardNodes) {
    EXPECT_EQ(
        outputOf("echo lost > /dev/null; head -c 3 /dev/zero | od -An -tx1; echo kept > /dev/stdout"),
        " 00 00 00\nkept\n");
    EXPECT_EQ(outputOf("touch /dev/shm/x && ls /dev/shm; test -c /dev/urandom && test -d /dev/pts"),
              "x\n");
}

TEST_F(ExecTest, HasATmpOfItsOwn) {
    const std::string file = "/tmp/" + fs::path(m_temporary.path()).filename().string() + "-mark";
    EXPECT_EQ(outputOf("stat -c %a /tmp; echo x > " + file), "1777\n");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(outputOf("test -e " + file + " || echo gone"), "gone\n");
}

TEST_F(ExecTest, LeavesTheHostsSystemAlone) {
    EXPECT_EQ(
        outputOf("touch /usr/mark 2>/dev/null || echo refused; ls -d /home 2>/dev/null || echo none"),
        "refused\nnone\n");
}

TEST_F(ExecTest, HasANetworkOfItsOwn) {
    const Words command = inShell("echo up; read line", kWithDaemon);
    Program first(command, surroundings());
    ASSERT_TRUE(first.waitForOutput("up\n")) << first.error();
    Program second(command, surroundings());
    ASSERT_TRUE(second.waitForOutput("up\n")) << second.error();
    first.write("\n");
    second.write("\n");
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(second.wait(), 0);
    EXPECT_EQ(outputOf("tail -n +3 /proc/net/dev | cut -d: -f1 | tr -d ' '"), "lo\n");
}

TEST_F(ExecTest, StartsTheDaemonBeforeTheCommand) {
    EXPECT_EQ(outcomeOf(inShell("grep -c ' 0100007F:3ACB .* 0A ' /proc/net/tcp; exit 5", kWithDaemon)),
              (Outcome{5, "1\n", "stand-in: started\n"}));
}

TEST_F(ExecTest, StartsNoDaemonUnasked) {
    EXPECT_EQ(outputOf("tail -n +2 /proc/net/tcp | wc -l"), "0\n");
}

TEST_F(ExecTest, SaysThatTheDaemonDied) {
    EXPECT_EQ(outcomeOf(exec({"--daemon", "--daemon-path", "/bin/false", "--", "echo", "ran"})),
              (Outcome{125, "",
                       "headunit: the daemon ended with status 1 before it listened on port 15051\n"}));
}

TEST_F(ExecTest, SaysThatThereIsNoDaemon) {
    EXPECT_EQ(outcomeOf(exec({"--daemon", "--daemon-path", "/none/such", "--", "echo"})),
              (Outcome{125, "",
                       "headunit: there is no daemon at /none/such; build the target 'production' or "
                       "name one with --daemon-path\n"}));
}

// A program's outcome is there only when nobody holds the streams any more: no process is left then.

TEST_F(ExecTest, LeavesNoProcessBehind) {
    EXPECT_EQ(outcomeOf(inShell("setsid sleep 1000 & echo up; exit 3")), (Outcome{3, "up\n", ""}));
}

TEST_F(ExecTest, RemovesWhatTheCommandMadeInTheUnit) {
    EXPECT_EQ(outcomeOf(inShell("mkdir -p /tmp/a/b /dev/c; touch /tmp/a/b/x; exit 9")).exitCode, 9);
}

class ExecStopped : public ExecTest, public testing::WithParamInterface<int> {};

TEST_P(ExecStopped, EndsEverythingInIt) {
    Program program(
        inShell("trap '' INT TERM HUP; setsid sleep 1000 & echo up; sleep 1000", kWithDaemon),
        surroundings());
    ASSERT_TRUE(program.waitForOutput("up\n")) << program.error();
    program.signal(GetParam());
    EXPECT_EQ(program.wait(), 128 + GetParam());
}

INSTANTIATE_TEST_SUITE_P(Signals, ExecStopped, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(ExecTest, TakesEverythingAlongWhenItIsKilled) {
    Program program(inShell("setsid sleep 1000 & echo up; sleep 1000"), surroundings());
    ASSERT_TRUE(program.waitForOutput("up\n")) << program.error();
    program.signal(SIGKILL);
    EXPECT_EQ(program.wait(), 128 + SIGKILL);
    // The folder of a killed one stays.
    for (const std::string& name : m_temporary.names())
        fs::remove_all(m_temporary / name);
}

TEST_F(ExecTest, KeepsAGivenFolder) {
    const TestFolder folder;
    const std::string unit = folder / "unit";
    outputOf("printf 0 > /dev/nvgpio/usb_pwr_0; echo x > /vrk/y", {"--unit", unit});
    EXPECT_EQ(contentOf(unit + "/vrk/y"), "x\n");
    writeFile(unit + "/dev/nvsku/rev", "2B\n");
    EXPECT_EQ(outputOf("cat /dev/nvgpio/usb_pwr_0 /dev/nvsku/rev /vrk/y", {"--unit", unit}), "02B\nx\n");
}

TEST_F(ExecTest, SeesNodesAppearAndVanishWhileItRuns) {
    const TestFolder folder;
    Program program(inShell("echo up; read line; ls /dev/new /dev/nvsku; read line; ls /dev/new",
                            {"--unit", folder.path()}),
                    surroundings());
    ASSERT_TRUE(program.waitForOutput("up\n")) << program.error();
    writeFile(folder / "dev/new", "");
    fs::remove(folder / "dev/nvsku/rev");
    program.write("\n");
    ASSERT_TRUE(program.waitForOutput("serial_num\n"));
    EXPECT_EQ(program.output(), "up\n/dev/new\n\n/dev/nvsku:\nserial_num\n");
    fs::remove(folder / "dev/new");
    program.write("\n");
    EXPECT_EQ(program.wait(), 2);
}

TEST_F(ExecTest, SaysThatBwrapIsMissing) {
    Program::Surroundings given = surroundings();
    given.environment["PATH"] = "/none";
    EXPECT_EQ(
        Program(exec({"--", "true"}), given).outcome(),
        (Outcome{
            125, "",
            "headunit: cannot start bwrap: No such file or directory (Debian package bubblewrap); allow "
            "unprivileged user namespaces here, or in a disposable container set the unit up on the "
            "container itself with 'headunit run --in-place'\n"}));
}

TEST_F(ExecTest, SaysInOneLineWhyBwrapCannotWork) {
    const TestFolder programs;
    writeFile(programs / "bwrap",
              "#!/bin/sh\necho 'bwrap: no namespaces' >&2\necho 'really' >&2\nexit 1\n");
    fs::permissions(programs / "bwrap", fs::perms::owner_all);
    Program::Surroundings given = surroundings();
    given.environment["PATH"] = programs.path() + ":/usr/bin:/bin";
    EXPECT_EQ(
        Program(exec({"--", "true"}), given).outcome(),
        (Outcome{
            125, "",
            "headunit: bwrap cannot build the unit here (bwrap: no namespaces really); allow unprivileged "
            "user namespaces here, or in a disposable container set the unit up on the container itself "
            "with 'headunit run --in-place'\n"}));
}

} // namespace
} // namespace headunit_test
