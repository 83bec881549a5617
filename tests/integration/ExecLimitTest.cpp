#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

constexpr std::size_t kMoreThanAPipeTakes = 1 << 20;

class ExecLimitTest : public DaemonTest {
protected:
    void expectKilled(const std::string& text, const std::string& output) {
        expectExchange(station, request("exec command 1 \"" + text + "\""),
                       failure("exec", "Process " + text + " was killed after timeout\nstdout+err:\n" +
                                           output + "\n"));
    }

    /// The text travels as base64, since it holds line feeds.
    void expectKilledEncoded(const std::string& text) {
        expectExchange(
            station, request("exec command 1 base64(" + base64(text) + ")"),
            failure("exec", "Process " + text + " was killed after timeout\nstdout+err:\n\n"));
    }

    Connection station;
};

/// Made longer until base64 carries it without padding, which would arrive as NUL bytes.
std::string whole(std::string text) {
    while (text.size() % 3 != 0)
        text += '\n';
    return text;
}

TEST_F(ExecLimitTest, TellsWhatTheKilledCommandWrote) {
    expectKilled("sleep 1000", "");
    expectKilled("echo begun; sleep 1000", "begun\n");
    expectKilled("printf 'no end'; echo err >&2; sleep 1000", "no enderr\n");
    expectKilled("echo '%s%n%d'; sleep 1000", "%s%n%d\n");
    expectNothingMore(station);
}

TEST_F(ExecLimitTest, AllowsTheWholeLimit) {
    const auto start = std::chrono::steady_clock::now();
    expectKilled("sleep 1000", "");
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST_F(ExecLimitTest, FeedsATextLargerThanAPipe) {
    const std::string text = whole(": " + std::string(kMoreThanAPipeTakes, 'x') + "\necho done\n");
    expectExchange(station, request("exec command 60 base64(" + base64(text) + ")"),
                   answer("exec base64(" + base64("done\n") + ")"));
}

TEST_F(ExecLimitTest, DoesNotMindAShellThatStopsReading) {
    const std::string text = whole("exit\n" + std::string(kMoreThanAPipeTakes, 'x'));
    expectExchange(station, request("exec command 60 base64(" + base64(text) + ")"),
                   answer("exec base64()"));
    expectNothingMore(station);
}

TEST_F(ExecLimitTest, CoversFeedingAShellThatDoesNotRead) {
    expectKilledEncoded(whole("sleep 1000\n" + std::string(kMoreThanAPipeTakes, 'x')));
    expectExchange(station, request("exec command 5 \"echo next\""),
                   answer("exec base64(" + base64("next\n") + ")"));
}

TEST_F(ExecLimitTest, KillsAShellThatIgnoresSignals) {
    expectKilled("trap '' HUP INT TERM; while :; do sleep 1000; done", "");
}

TEST_F(ExecLimitTest, KillsAStoppedShell) {
    expectKilled("kill -STOP $$", "");
}

struct Escape {
    const char* name;
    const char* text; ///< starts a process that writes its number to /tmp/escaped
};

constexpr Escape kEscapes[] = {
    {"in the background", "sh -c 'echo $$ >/tmp/escaped; exec sleep 1000' &"},
    {"in a session of its own", "setsid sh -c 'echo $$ >/tmp/escaped; exec sleep 1000' &"},
    {"without its parent", "(sh -c 'echo $$ >/tmp/escaped; exec sleep 1000' &)"},
    {"in a session of its own and without its parent",
     "(setsid sh -c 'echo $$ >/tmp/escaped; exec sleep 1000' &)"},
    {"twice removed",
     "(setsid sh -c '(setsid sh -c \"echo \\$\\$ >/tmp/escaped; exec sleep 1000\" &)' &)"},
    {"without streams", "(setsid sh -c 'echo $$ >/tmp/escaped; exec sleep 1000' <&- >&- 2>&- &)"},
};

TEST_F(ExecLimitTest, KillsEverythingThatTheCommandStarted) {
    for (const Escape& row : kEscapes) {
        SCOPED_TRACE(row.name);
        const std::string text = whole(row.text + "\nsleep 1001\n"s);
        std::string escaped;
        // On a busy machine the limit may be over before the process runs.
        ASSERT_TRUE(eventually([&] {
            expectKilledEncoded(text);
            escaped = contentOf("/tmp/escaped");
            return !escaped.empty();
        }));
        EXPECT_FALSE(isRunning(std::stoi(escaped)));
        removeFile("/tmp/escaped");
    }
}

TEST_F(ExecLimitTest, LeavesNoDeadProcessesBehind) {
    expectKilled("sleep 1000 & setsid sleep 1000 & (sleep 1000 &); sleep 1000", "");
    expectExchange(station, request("exec command 5 true"), answer("exec base64()"));
    EXPECT_TRUE(eventually([this] { return childrenOf(daemon.pid()).empty(); }));
}

} // namespace
