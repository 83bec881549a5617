#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

class ExecTest : public DaemonTest {};

struct Command {
    const char* text;   ///< behind "exec "
    std::string output; ///< what the command writes
};

const Command kCommands[] = {
    {"command 5 \"echo hello\"", "hello\n"},
    {"command 5 uname", "Linux\n"},
    {"commandfoo 5 \"echo prefix\"", "prefix\n"},
    {"\"command and more\" 5 \"echo prefix\"", "prefix\n"},
    {"command 5 \"true\"", ""},
    {"command 5 \"echo before; exit 1\"", "before\n"},
    {"command 5 \"no-such-command-anywhere\"", "sh: 1: no-such-command-anywhere: not found\n"},
    {"command 5 \"echo out; echo err >&2; echo out again\"", "out\nerr\nout again\n"},
    {"command 5 \"printf '\\000\\001\\377'\"", "\0\1\xFF"s},
    {"command 5 \"echo %s%n%d\"", "%s%n%d\n"},
    {"command 5 \"cat\"", ""},
    {"command 5 \"echo $0 $# $-\"", "sh 0 s\n"},
    {"command 0 \"echo default limit\"", "default limit\n"},
    {"command none \"echo default limit\"", "default limit\n"},
    {"command 0x10 \"echo sixteen\"", "sixteen\n"},
    {"command 010 \"echo eight\"", "eight\n"},
    {"command \"-1\" \"echo never reached\"", "never reached\n"},
    {"command 2147483647 \"echo longest\"", "longest\n"},
    {"command hex(35) \"echo limit in hex\"", "limit in hex\n"},
    {"command 5 hex(6563686F2061 0A 6563686F2062)", "a\nb\n"},
    {"command 5 hex(6563686F20610062)", "a\n"},
    {"command 5 base64(ZWNobyBhCg==)", "a\n"},
    {"hex(636F6D6D616E64) 5 \"echo word in hex\"", "word in hex\n"},
};

TEST_F(ExecTest, AnswersWhatTheCommandWrote) {
    Connection station;
    for (const Command& row : kCommands) {
        SCOPED_TRACE(row.text);
        expectExchange(station, request("exec "s + row.text),
                       answer("exec base64(" + base64(row.output) + ")"));
    }
    expectNothingMore(station);
}

struct Refusal {
    const char* text;
    const char* message;
};

constexpr Refusal kRefusals[] = {
    {"exec", "Command execute was called with 1 parameters must have 4 parameters"},
    {"exec command", "Command execute was called with 2 parameters must have 4 parameters"},
    {"exec command 5", "Command execute was called with 3 parameters must have 4 parameters"},
    {"exec command 5 \"\"", "Command execute was called with 3 parameters must have 4 parameters"},
    {"exec command 5 touch ran", "Command execute was called with 5 parameters must have 4 parameters"},
    {"exec Command 5 \"touch /tmp/ran\"", "Unsupported exec subcommand "},
    {"exec comman 5 \"touch /tmp/ran\"", "Unsupported exec subcommand "},
    {"exec 5 command \"touch /tmp/ran\"", "Unsupported exec subcommand "},
    {"exec hex(636F6D6D616E) 5 \"touch /tmp/ran\"", "Unsupported exec subcommand "},
    {"exec hex( ) 5 \"touch /tmp/ran\"", "Unsupported exec subcommand "},
};

TEST_F(ExecTest, RefusesOtherArguments) {
    Connection station;
    for (const Refusal& row : kRefusals) {
        SCOPED_TRACE(row.text);
        expectExchange(station, request(row.text), failure("exec", row.message));
    }
    expectNothingMore(station);
    EXPECT_FALSE(exists("/tmp/ran"));
}

TEST_F(ExecTest, ReturnsLongOutputWhole) {
    Connection station;
    for (const std::size_t size : {246U, 247U, 32768U, 32769U, 65536U, 65537U, 4000001U}) {
        SCOPED_TRACE(size);
        expectExchange(
            station,
            request("exec command 60 \"head -c " + std::to_string(size) + " /dev/zero | tr '\\000' x\""),
            answer("exec base64(" + base64(std::string(size, 'x')) + ")"));
    }
    expectNothingMore(station);
}

TEST_F(ExecTest, TellsOfTheSignalThatEndedTheShell) {
    Connection station;
    for (const int signal : {1, 9, 11, 15}) {
        SCOPED_TRACE(signal);
        station.send(
            request("exec command 5 \"echo $$ >/tmp/pid; kill -" + std::to_string(signal) + " $$\""));
        const std::string info = station.receiveLine();
        const std::string pid = contentOf("/tmp/pid");
        ASSERT_FALSE(pid.empty());
        EXPECT_EQ(info, answer("Info \"child process for c command received signal pid: " +
                               pid.substr(0, pid.size() - 1) +
                               ", returncode: " + std::to_string(signal) + "\""));
        EXPECT_EQ(station.receiveLine(), answer("exec Error 0x1010000"));
    }
    expectNothingMore(station);
}

TEST_F(ExecTest, GivesTheShellThreeDescriptorsAndNoMore) {
    const std::vector<Connection> others = acceptedStations(5);
    Connection station;
    // The fourth is the folder that `ls` reads.
    expectExchange(station, request("exec command 5 \"ls /proc/self/fd\""),
                   answer("exec base64(" + base64("0\n1\n2\n3\n") + ")"));
    expectExchange(station, request("exec command 5 \"readlink /proc/$$/fd/1 /proc/$$/fd/2\""),
                   answer("exec base64(" + base64("/tmp/resp.txt\n/tmp/resp.txt\n") + ")"));
    expectExchange(station,
                   request("exec command 5 \"readlink /proc/$$/fd/0 | sed s/[0-9]/N/g | tr -s N\""),
                   answer("exec base64(" + base64("pipe:[N]\n") + ")"));
}

TEST_F(ExecTest, GivesTheShellDefaultSignalHandling) {
    Connection station;
    expectExchange(station, request("exec command 5 \"grep SigBlk /proc/self/status\""),
                   answer("exec base64(" + base64("SigBlk:\t0000000000000000\n") + ")"));
    // The two signals above the standard ones are the C library's own.
    expectExchange(station,
                   request("exec command 5 \"echo $((0x$(sed -n s/SigIgn:.//p /proc/self/status) & "
                           "0x7FFFFFFF))\""),
                   answer("exec base64(" + base64("0\n") + ")"));
    // Were a lost reader's signal ignored, the writer would complain.
    expectExchange(station, request("exec command 5 \"yes | head -n 1\""),
                   answer("exec base64(" + base64("y\n") + ")"));
}

TEST_F(ExecTest, LeavesRunningWhatASuccessfulCommandLeftBehind) {
    Connection station;
    expectExchange(station, request("exec command 5 \"sleep 1000 & echo $! >/tmp/left\""),
                   answer("exec base64()"));
    const pid_t left = std::stoi(contentOf("/tmp/left"));
    EXPECT_TRUE(isRunning(left));
    expectExchange(station, request("exec command 1 \"sleep 1001\""),
                   failure("exec", "Process sleep 1001 was killed after timeout\nstdout+err:\n\n"));
    EXPECT_TRUE(isRunning(left));
}

TEST_F(ExecTest, LeavesRunningWhatALeftoverStartsDuringACommandThatIsKilled) {
    Connection station;
    bool hasStarted = false;
    // A busy machine gets more time, and each attempt a folder that no earlier one writes to.
    for (int limit = 2; limit < 60 && !hasStarted; limit *= 2) {
        const std::string folder = "/tmp/attempt" + std::to_string(limit);
        std::filesystem::remove_all(folder);
        makeFolder(folder);
        expectExchange(station,
                       request("exec command 60 \"(until [ -e " + folder +
                               "/go ]; do sleep 0.01; done; setsid -f sh -c 'echo $$ >" + folder +
                               "/left; exec sleep 1000'; touch " + folder + "/done) &\""),
                       answer("exec base64()"));
        const std::string text = "touch " + folder + "/go; until [ -e " + folder +
                                 "/done ]; do sleep 0.01; done; echo started; sleep 1001";
        const std::string killed = "Process " + text + " was killed after timeout\nstdout+err:\n";
        station.send(request("exec command " + std::to_string(limit) + " \"" + text + "\""));
        std::string lines = station.receiveLine();
        lines += station.receiveLine();
        hasStarted = lines == failure("exec", killed + "started\n\n");
        EXPECT_TRUE(hasStarted || lines == failure("exec", killed + "\n")) << lines;
        if (hasStarted) {
            EXPECT_TRUE(eventually([&] { return !contentOf(folder + "/left").empty(); }));
            EXPECT_TRUE(isRunning(std::stoi(contentOf(folder + "/left"))));
        }
    }
    EXPECT_TRUE(hasStarted) << "no limit was long enough to start it";
}

TEST_F(ExecTest, LeftoversThatEndAreCollectedWithoutAnotherCommand) {
    Connection station;
    expectExchange(station,
                   request("exec command 5 \"sleep 0.05 & echo $! >/tmp/one; (sleep 0.05 & echo $! "
                           ">/tmp/two); setsid sleep 0.05 & echo $! >/tmp/three\""),
                   answer("exec base64()"));
    for (const char* file : {"/tmp/one", "/tmp/two", "/tmp/three"}) {
        std::string number = contentOf(file);
        ASSERT_FALSE(number.empty());
        number.pop_back();
        EXPECT_TRUE(eventually([&number] { return !exists("/proc/" + number); })) << file;
    }
}

TEST_F(ExecTest, LaterAnswersAreFreeOfWhatLeftoversWrite) {
    Connection station;
    expectExchange(
        station,
        request("exec command 5 \"(while [ ! -e /tmp/go ]; do sleep 0.01; done; echo late; echo "
                "late >&2; touch /tmp/late) & echo first\""),
        answer("exec base64(" + base64("first\n") + ")"));
    expectExchange(
        station,
        request("exec command 30 \"touch /tmp/go; while [ ! -e /tmp/late ]; do sleep 0.01; done; "
                "echo second\""),
        answer("exec base64(" + base64("second\n") + ")"));
    EXPECT_EQ(contentOf(kCaptureFile), "second\n");
}

} // namespace
