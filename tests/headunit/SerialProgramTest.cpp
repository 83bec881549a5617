#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <utility>

#include "support/HeadunitTest.h"
#include "support/Line.h"

namespace headunit_test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kReadSupplier[] = "echo supplier [$FIRST_TIER_SUPPLIER]";

/// The finished program with its serial lines; each case has a TMPDIR of its own.
class SerialProgramTest : public HeadunitTest {
protected:
    Program::Surroundings surroundings() const {
        return {"", {{"TMPDIR", m_temporary.path()}, {"FIRST_TIER_SUPPLIER", "outer"}}};
    }

    /// What 'control' prints, and its exit status.
    std::pair<int, std::string> control(const Words& words) const {
        Program program(joined({HEADUNIT_PROGRAM, "control"}, words), surroundings());
        const int status = program.wait();
        return {status, program.output() + program.error()};
    }

    /// A program in the place of the daemon that says what supplier it is told of, and then stands in.
    std::string tellingDaemon() const {
        const std::string daemon = m_temporary / "daemon";
        writeFile(daemon,
                  std::string("#!/bin/sh\n") + kReadSupplier + " >&2\nexec " + STANDIN_DAEMON + "\n");
        fs::permissions(daemon, fs::perms::owner_all);
        return daemon;
    }
};

TEST_F(SerialProgramTest, AUnitHasItsLinesAndTheStationsEnd) {
    EXPECT_EQ(quietOutputOf("for node in /dev/usbserialadapter1 /dev/ser1 /dev/NAD/AT_port /dev/ser3 "
                            "/run/headunit/station-line; do test -c $node && echo $node; done"),
              "/dev/usbserialadapter1\n/dev/ser1\n/dev/NAD/AT_port\n/dev/ser3\n"
              "/run/headunit/station-line\n");
    EXPECT_EQ(quietOutputOf("exec 3<>/dev/usbserialadapter1 4<>/run/headunit/station-line; "
                            "echo there >&4; head -c 6 <&3; echo back >&3; head -c 5 <&4"),
              "there\nback\n");
    EXPECT_EQ(quietOutputOf("exec 3<>/dev/ser1; echo round >&3; head -c 6 <&3"), "round\n");
    EXPECT_THAT(m_temporary.names(), IsEmpty());
}

TEST_F(SerialProgramTest, AUnitIsControlledFromInside) {
    EXPECT_EQ(
        quietOutputOf("headunit control unplug station; test -e /dev/usbserialadapter1 || echo gone; "
                      "headunit control plug station; test -c /dev/usbserialadapter1 && echo back; "
                      "headunit control state | head -n 1"),
        "ok\ngone\nok\nback\nstation /dev/usbserialadapter1 plugged from-unit 0 to-unit 0\n");
    EXPECT_EQ(quietOutputOf("headunit control position -12.5 8; headunit control plug it 2>&1; echo $?"),
              "ok\nheadunit: 'it' is not one of station, loopback, modem, receiver\n1\n");
}

TEST_F(SerialProgramTest, ARunningUnitIsControlledFromOutside) {
    const std::string unit = m_temporary / "unit";
    Program program(runStandIn({"--unit", unit}), surroundings());
    ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
    const std::string station = fs::read_symlink(unit + "/run/headunit/station-line").string();
    EXPECT_THAT(program.output(), HasSubstr("serial  serial:" + station + "\n"));
    EXPECT_EQ(control({"--unit", unit, "unplug", "modem"}), (std::pair{0, std::string("ok\n")}));
    const auto [status, text] = control({"--unit", unit, "state"});
    EXPECT_EQ(status, 0);
    EXPECT_THAT(text, HasSubstr("modem /dev/NAD/AT_port unplugged from-unit 0 to-unit 0\n"));

    const Line ours(station);
    const Line theirs(unit + "/dev/usbserialadapter1");
    ASSERT_TRUE(ours.trySend("request"));
    EXPECT_EQ(theirs.receive(7), "request");
    stop(program);
    EXPECT_TRUE(ours.seesHangUp());
    EXPECT_FALSE(fs::is_symlink(unit + "/dev/usbserialadapter1"));
    EXPECT_TRUE(fs::is_empty(unit + "/run/headunit"));
}

TEST_F(SerialProgramTest, TwoUnitsRunSideBySide) {
    const std::vector<std::string> command =
        inShell("exec 3<>/dev/ser1; echo up; read word; echo $word >&3; read word <&3; echo $word");
    Program first(command, surroundings());
    Program second(command, surroundings());
    ASSERT_TRUE(first.waitForOutput("up\n")) << first.error();
    ASSERT_TRUE(second.waitForOutput("up\n")) << second.error();
    first.write("first\n");
    second.write("second\n");
    EXPECT_EQ(first.outcome(), (Outcome{0, "up\nfirst\n", ""}));
    EXPECT_EQ(second.outcome(), (Outcome{0, "up\nsecond\n", ""}));
    EXPECT_THAT(m_temporary.names(), IsEmpty());
}

TEST_F(SerialProgramTest, OneFolderIsForOneUnitAtATime) {
    const std::string unit = m_temporary / "unit";
    Program first(inShell("echo up; read line", {"--unit", unit}), surroundings());
    ASSERT_TRUE(first.waitForOutput("up\n")) << first.error();
    const std::string message =
        "headunit: another headunit is at work here (" + unit + "/run/headunit is locked)\n";
    EXPECT_EQ(outcomeOf(exec({"--unit", unit, "--", "true"})), (Outcome{125, "", message}));
    first.write("\n");
    EXPECT_EQ(first.wait(), 0);
}

TEST_F(SerialProgramTest, AKeptFolderIsUsedAgainAfterAKilledRun) {
    const std::string unit = m_temporary / "unit";
    Program killed(inShell("echo up; read line", {"--unit", unit}), surroundings());
    ASSERT_TRUE(killed.waitForOutput("up\n")) << killed.error();
    killed.signal(SIGKILL);
    EXPECT_EQ(killed.wait(), 128 + SIGKILL);
    EXPECT_TRUE(fs::is_symlink(unit + "/dev/ser1"));
    EXPECT_EQ(quietOutputOf("exec 3<>/dev/ser1; echo round >&3; head -c 6 <&3; "
                            "headunit control state | grep -c plugged",
                            {"--unit", unit}),
              "round\n4\n");
}

TEST_F(SerialProgramTest, ControlSaysThatThereIsNoUnit) {
    const std::string nowhere = m_temporary / "none";
    EXPECT_EQ(control({"--unit", nowhere, "state"}),
              (std::pair{3, "headunit: no unit listens at " + nowhere +
                                "/run/headunit/control; outside a unit name its folder with --unit\n"}));
}

TEST_F(SerialProgramTest, ControlWantsWords) {
    EXPECT_EQ(control({}).first, 2);
    EXPECT_EQ(control({"--fast", "state"}).first, 2);
    EXPECT_EQ(control({"state\nstate"}).first, 2);
    EXPECT_EQ(control({"state", "--", "true"}).first, 2);
}

TEST_F(SerialProgramTest, TheSupplierIsTheDaemonsAlone) {
    const std::string daemon = tellingDaemon();
    const Words rest = {"--daemon-path", daemon, "--", "sh", "-c", kReadSupplier};
    for (const auto& [options, expected] : std::vector<std::pair<Words, std::string>>{
             {{"--daemon", "--supplier", "inner one"}, "inner one"},
             {{"--daemon", "--supplier", ""}, ""},
             {{"--daemon"}, "outer"}}) {
        EXPECT_EQ(
            Program(exec(joined(options, rest)), surroundings()).outcome(),
            (Outcome{0, "supplier [outer]\n", "supplier [" + expected + "]\nstand-in: started\n"}));
    }
    Program useless(exec({"--supplier", "x", "--", "true"}), surroundings());
    EXPECT_EQ(useless.wait(), 2);
    EXPECT_THAT(useless.error(), HasSubstr("--daemon"));
}

TEST_F(SerialProgramTest, TheSupplierOfARunningUnit) {
    const std::string daemon = tellingDaemon();
    for (const bool given : {true, false}) {
        const Words supplier = given ? Words{"--supplier", "inner"} : Words{};
        const Words command = run(joined({"--daemon-path", daemon}, supplier));
        Program::Surroundings around = surroundings();
        around.environment["PATH"] = fs::path(STANDIN_DAEMON).parent_path().string() + ":/usr/bin:/bin";
        Program program(command, around);
        ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
        stop(program);
        EXPECT_THAT(program.error(), HasSubstr(given ? "supplier [inner]\n" : "supplier [outer]\n"));
    }
}

TEST_F(SerialProgramTest, InPlaceHasTheLinesToo) {
    const TestFolder root;
    Program program(inPlace(root, {"--supplier", "inner"}), surroundings());
    ASSERT_TRUE(program.waitForOutput("Ctrl-C\n")) << program.error();
    EXPECT_THAT(program.output(), HasSubstr("serial  serial:/dev/pts/"));
    EXPECT_THAT(program.output(), HasSubstr("/headunit control state\n"));
    for (const char* node : {"dev/usbserialadapter1", "dev/ser1", "dev/NAD/AT_port", "dev/ser3",
                             "run/headunit/station-line"})
        EXPECT_EQ(fs::read_symlink(root / node).string().rfind("/dev/pts/", 0), 0u) << node;
    EXPECT_EQ(control({"--unit", root.path(), "unplug", "receiver"}).second, "ok\n");
    EXPECT_FALSE(fs::is_symlink(root / "dev/ser3"));
    EXPECT_EQ(control({"--unit", root.path(), "plug", "receiver"}).second, "ok\n");
    stop(program);
    EXPECT_FALSE(fs::is_symlink(root / "dev/ser3"));
    EXPECT_FALSE(fs::exists(root / "dev/NAD"));
    EXPECT_TRUE(fs::is_empty(root / "run"));
}

} // namespace
} // namespace headunit_test
