#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <future>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Keyboard.h"
#include "Links.h"
#include "support/Pipe.h"

namespace station {
namespace {

using testing::HasSubstr;

constexpr char kHint[] = "station: the line is open; Ctrl-] ends\r\n";
constexpr char kModemAnswer[] = "AT\r\r\nOK\r\n";
constexpr char kEscape[] = "\x1D";

/// `station serial terminal` and the daemon in a simulated unit.
class TerminalInUnit : public Links {
protected:
    static Invocation terminal(const std::string& channel,
                               const std::vector<std::string>& options = {}) {
        std::vector<std::string> words = options;
        words.insert(words.end(), {"serial", "terminal", channel});
        return invocation(words);
    }

    /// With this input, which comes through a pipe.
    static Outcome runWith(const std::string& input, Invocation invocation) {
        Pipe pipe;
        std::thread writer([&] {
            EXPECT_EQ(::write(pipe.writeEnd.get(), input.data(), input.size()),
                      static_cast<ssize_t>(input.size()));
            pipe.writeEnd.reset();
        });
        invocation.standardInput = pipe.readEnd.get();
        Outcome outcome = runStation(invocation);
        writer.join();
        return outcome;
    }

    /// With a person at the keyboard, who sees what it prints.
    static std::future<Outcome> startAt(const Keyboard& keyboard, Invocation invocation) {
        invocation.standardInput = keyboard.terminal();
        invocation.standardOutput = keyboard.terminal();
        auto outcome = std::async(std::launch::async, [invocation] { return runStation(invocation); });
        keyboard.waitUntilRaw();
        return outcome;
    }

    static void expectClosed(const std::string& channel) {
        const Outcome outcome = run({"serial", "getall", channel});
        EXPECT_EQ(outcome.exitCode, 5);
        EXPECT_THAT(outcome.errors, HasSubstr("Serial port not open."));
    }
};

INSTANTIATE_TEST_SUITE_P(Station, TerminalInUnit, testing::ValuesIn(allLinks()), nameOfLink);

TEST_P(TerminalInUnit, PipesToTheModem) {
    const Outcome outcome = runWith("AT\r", terminal("1"));
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, kModemAnswer);
    EXPECT_EQ(outcome.errors, "");
    expectClosed("1");
}

TEST_P(TerminalInUnit, PipesEveryByteOverTheLoopBackLine) {
    std::string bytes;
    for (int i = 0; i < 2000; ++i)
        bytes += static_cast<char>(i);
    const Outcome outcome = runWith(bytes, terminal("0"));
    if (!GetParam().isSerial) {
        // This is the channel that stands for TCP.
        EXPECT_EQ(outcome.exitCode, 5);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors,
                  "station: refused: Error 0xA000040: Channel is a already in use by Bios\n");
        return;
    }
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.output == bytes) << outcome.output.size() << " bytes";
    EXPECT_EQ(outcome.errors, "");
    expectClosed("0");
}

TEST_P(TerminalInUnit, ServesAPersonAtATerminal) {
    Keyboard keyboard;
    auto ending = startAt(keyboard, terminal("1"));
    keyboard.send("AT\r");
    EXPECT_EQ(keyboard.receiveTo("OK\r\n"), kModemAnswer);
    keyboard.send("\x03");
    EXPECT_EQ(keyboard.receiveTo("\x03"), "\x03") << "the modem echoes it, and nobody ends";
    keyboard.send(kEscape);
    const Outcome outcome = ending.get();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, kHint);
    EXPECT_TRUE(keyboard.isCooked());
    expectClosed("1");
}

TEST_P(TerminalInUnit, PutsEverythingBackAfterASignal) {
    for (const int signal : {SIGTERM, SIGHUP}) {
        Keyboard keyboard;
        std::promise<pid_t> started;
        Invocation invocation = terminal("1");
        invocation.onStart = [&](pid_t process) { started.set_value(process); };
        auto ending = startAt(keyboard, std::move(invocation));
        ::kill(started.get_future().get(), signal);
        const Outcome outcome = ending.get();
        EXPECT_EQ(outcome.exitCode, 128 + signal);
        EXPECT_THAT(outcome.errors, HasSubstr("station: interrupted by SIG"));
        EXPECT_TRUE(keyboard.isCooked());
        expectClosed("1");
    }
}

TEST_P(TerminalInUnit, TellsALineThatFails) {
    Keyboard keyboard;
    auto ending = startAt(keyboard, terminal("1"));
    control("unplug modem");
    const Outcome outcome = ending.get();
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_THAT(outcome.errors, HasSubstr("station: refused: Error 0xA000000: Failed to "));
    EXPECT_TRUE(keyboard.isCooked());
}

TEST_P(TerminalInUnit, TellsALinkThatIsLost) {
    Keyboard keyboard;
    auto ending = startAt(keyboard, terminal("1", {"--timeout", "3"}));
    cut();
    const Outcome outcome = ending.get();
    // A terminal does not tell its other end that it was unplugged.
    EXPECT_EQ(outcome.exitCode, GetParam().isSerial ? 4 : 6);
    EXPECT_TRUE(keyboard.isCooked());
}

} // namespace
} // namespace station
