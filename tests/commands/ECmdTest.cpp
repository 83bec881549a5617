// The tool that signals the driver is a stand-in here: it notes its arguments and ends as it is told.
#include "commands/ECmd.h"

#include <signal.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "support/RefusedCalls.h"
#include "support/UnitFixture.h"

namespace {

constexpr unsigned int kAudioError = 0x50010000;
constexpr unsigned int kInvalidState = 0x50000001;

constexpr char kToolFolder[] = "/tmp/tools";
constexpr char kTool[] = "/tmp/tools/slay";
constexpr char kNoted[] = "/tmp/slayed";

constexpr char kActivated[] = "-s|SIGUSR1|deva-nvaudio|\n";
constexpr char kDeactivated[] = "-s|SIGUSR2|deva-nvaudio|\n";
constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kNotRunning[] =
    "Nvidia audio driver is not running: slay -s SIGUSR1 deva-nvaudio returned with rc: 0 ";

class ECmdTest : public CommandTest<ECmd, UnitFixture> {
protected:
    ECmdTest() {
        std::filesystem::create_directories(kToolFolder);
        const char* const path = std::getenv("PATH");
        ::setenv("PATH", (std::string(kToolFolder) + ":" + (path == nullptr ? "" : path)).c_str(), 1);
        toolEndsWith("exit 1");
        remove(kNoted);
    }

    static void toolEndsWith(const std::string& end) {
        write(kTool,
              "#!/bin/sh\nprintf '%s|' \"$@\" >> /tmp/slayed\necho >> /tmp/slayed\n" + end + "\n");
        std::filesystem::permissions(kTool, std::filesystem::perms::owner_all);
    }

    /// What the tool was called with since the last time.
    static std::string noted() {
        const std::string text = read(kNoted);
        remove(kNoted);
        return text;
    }

    /// That a request is refused, with `calls` of the tool each time.
    template <typename Request>
    void expectFailure(const Request& request, unsigned int code, const std::string& text,
                       const std::string& calls) {
        expectRefused(request, code, text);
        EXPECT_EQ(noted(), calls + calls);
    }
};

const Bytes kActivateRequest = {0x04, 'E', 0x80, 1};
const Bytes kDeactivateRequest = {0x04, 'E', 0x80, 0};

} // namespace

TEST_F(ECmdTest, ABinaryRequestSendsTheSignalOfItsState) {
    for (const auto& [state, calls] :
         Rows<unsigned char, const char*>{{1, kActivated}, {0, kDeactivated}}) {
        SCOPED_TRACE(calls);
        expectError(run(Bytes{0x04, 'E', 0x80, state}), 0, "");
        EXPECT_EQ(noted(), calls);
        expectDone({0x04, 'E', 0x80, state});
        EXPECT_EQ(noted(), calls);
        expectError(Response(command().setState(state)), 0, "");
        EXPECT_EQ(noted(), calls);
    }
}

TEST_F(ECmdTest, ALineSendsTheSignalOfItsWord) {
    const Rows<const char*, const char*> rows = {
        {"activate", kActivated},      {"activated", kActivated},
        {"activate now", kActivated},  {"deactivate", kDeactivated},
        {"deactivated", kDeactivated}, {"deactivateactivate", kDeactivated},
    };
    for (const auto& [word, calls] : rows) {
        SCOPED_TRACE(word);
        expectError(run(Words{"audio", word}), 0, "");
        EXPECT_EQ(noted(), calls);
        expectAnswer(Words{"audio", word}, "audio ok");
        EXPECT_EQ(noted(), calls);
        const std::string text = word;
        expectAnswer({token("audio"), {text.begin(), text.end()}}, "audio ok"); // without a zero
        EXPECT_EQ(noted(), calls);
    }
}

TEST_F(ECmdTest, AnyNumberOfSignalledProcessesIsASuccess) {
    for (const char* end : {"exit 1", "exit 2", "exit 127", "exit 255", "kill -9 $$"}) {
        SCOPED_TRACE(end);
        toolEndsWith(end);
        expectError(run(kActivateRequest), 0, "");
        expectError(run(kDeactivateRequest), 0, "");
        EXPECT_EQ(noted(), std::string(kActivated) + kDeactivated);
    }
}

TEST_F(ECmdTest, NoSignalledProcessIsAnErrorThatNamesTheActivatingSignal) {
    toolEndsWith("exit 0");
    expectFailure(kActivateRequest, kAudioError, kNotRunning, kActivated);
    expectFailure(kDeactivateRequest, kAudioError, kNotRunning, kDeactivated);
    expectFailure(Words{"audio", "activate"}, kAudioError, kNotRunning, kActivated);
    expectFailure(Words{"audio", "deactivate"}, kAudioError, kNotRunning, kDeactivated);
}

TEST_F(ECmdTest, ACallWhoseEndCannotBeLearntIsAnError) {
    ::signal(SIGCHLD, SIG_IGN);
    expectFailure(kActivateRequest, kAudioError,
                  "system call error: slay -s SIGUSR1 deva-nvaudio returned with rc: -1", kActivated);
    expectFailure(Words{"audio", "deactivate"}, kAudioError,
                  "system call error: slay -s SIGUSR2 deva-nvaudio returned with rc: -1", kDeactivated);
    ::signal(SIGCHLD, SIG_DFL);
    expectError(run(kActivateRequest), 0, "");
}

TEST_F(ECmdTest, ACallThatCannotBeMadeIsAnError) {
    inFreshProcess([] {
        refuseSystemCalls({SYS_clone, SYS_clone3, SYS_vfork, SYS_fork}, EAGAIN);
        expectError(run(kActivateRequest), kAudioError,
                    "system call error: slay -s SIGUSR1 deva-nvaudio returned with rc: -1");
    });
}

TEST_F(ECmdTest, TheToolStartsWithDefaultSignalHandling) {
    // The daemon ignores a lost reader, and whoever has started it may have ignored or blocked more.
    ::signal(SIGHUP, SIG_IGN);
    sigset_t blocked;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &blocked, nullptr);
    for (const char* signal : {"PIPE", "HUP", "TERM"}) {
        SCOPED_TRACE(signal);
        // Lives on, and notes that, unless the signal ends it.
        toolEndsWith(std::string("sh -c 'kill -") + signal + " $$; echo lives >> /tmp/slayed'\nexit 1");
        expectError(run(kActivateRequest), 0, "");
        EXPECT_EQ(noted(), kActivated);
    }
    ::sigprocmask(SIG_UNBLOCK, &blocked, nullptr);
    ::signal(SIGHUP, SIG_DFL);
}

TEST_F(ECmdTest, NothingIsRetriedAndNothingRemembered) {
    toolEndsWith("exit 0");
    run(kActivateRequest);
    EXPECT_EQ(noted(), kActivated);
    toolEndsWith("exit 1");
    for (int time = 0; time < 3; ++time)
        expectError(run(kActivateRequest), 0, "");
    EXPECT_EQ(noted(), std::string(kActivated) + kActivated + kActivated);
}

TEST_F(ECmdTest, RefusesWhatIsNoState) {
    for (const unsigned char state : Bytes{2, 3, 0x7F, 0x80, 0xFF})
        expectFailure(Bytes{0x04, 'E', 0x80, state}, kInvalidState, "invalid state requested", "");
}

TEST_F(ECmdTest, RefusesFramesOfAnotherKind) {
    expectFailure(Bytes{0x04, 'E', 0x81, 1}, kAudioError, "Unknown 'E' subcommand: 81", "");
    expectFailure(Bytes{0x04, 'E', 0x00, 1}, kAudioError, "Unknown 'E' subcommand: 0", "");
    expectFailure(Bytes{0x04, 'E', 0x0A, 1}, kAudioError, "Unknown 'E' subcommand: a", "");
    expectFailure(Bytes{0x04, 'E', 0xFF, 9}, kAudioError, "Unknown 'E' subcommand: ff", "");
    expectFailure(Bytes{0x05, 'E', 0x80, 1, 0}, kAudioError, kInvalidLength, "");
    expectFailure(Bytes{0x05, 'E', 0x81, 1, 0}, kAudioError, kInvalidLength, "");
    expectRefused({0x03, 'E', 0x80}, kAudioError, kInvalidLength);
    expectRefused({0x02, 'E'}, kAudioError, kInvalidLength);
    expectNothingRefused(kAudioError, kInvalidLength);
    EXPECT_FALSE(exists(kNoted));
}

TEST_F(ECmdTest, RefusesLinesOfAnotherKind) {
    expectFailure(Words{"audio"}, kAudioError, kInvalidLength, "");
    expectFailure(Words{"audio", "activate", "now"}, kAudioError, kInvalidLength, "");
    expectFailure(Words{"audio", "wrong", "now"}, kAudioError, kInvalidLength, "");
    expectError(run(Tokens{}), kAudioError, kInvalidLength);
    for (const char* word :
         {"", "activat", "Activate", "ACTIVATE", " activate", "deactivat", "reactivate", "1", "%s%n%x"})
        expectFailure(Words{"audio", word}, kGenericError,
                      "unknown subcommand '" + std::string(word) + "'", "");
    expectFailure(Tokens{token("audio"), {}}, kGenericError, "unknown subcommand ''", "");
    expectFailure(Tokens{token("audio"), {'a', 'c', 't'}}, kGenericError, "unknown subcommand 'act'",
                  "");
}
