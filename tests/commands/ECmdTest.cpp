// The tool that signals the driver is a stand-in here: it notes its arguments and ends as it is told.
#include "commands/ECmd.h"

#include <signal.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "core/Handler.h"
#include "support/RefusedCalls.h"
#include "support/UnitFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Tokens = std::vector<std::vector<char>>;

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

class ECmdTest : public UnitFixture {
protected:
    ECmdTest() {
        audio();
        if (!handler().isValid())
            handler().start();
        std::filesystem::create_directories(kToolFolder);
        const char* const path = std::getenv("PATH");
        ::setenv("PATH", (std::string(kToolFolder) + ":" + (path == nullptr ? "" : path)).c_str(), 1);
        toolEndsWith("exit 1");
        remove(kNoted);
    }

    static ECmd& audio() { return *ECmd::getInstance(); }
    static Handler& handler() { return *Handler::getInstance(); }

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

    static Response process(Bytes request) { return Response(audio().process(&request)); }
    static Response process(Tokens list) { return Response(audio().process(list)); }
    Bytes send(Bytes request) { return handler().handleCommand(&request, &m_listener); }
    std::string send(const Tokens& list) { return handler().handleCommand(list, &m_listener); }

    static void expectResponse(const Response& response, unsigned int code, const std::string& text) {
        EXPECT_EQ(response->code, code);
        EXPECT_EQ(response->message, text);
        EXPECT_EQ(response->protocol, 0);
    }

    /// That a request is answered by the text and the code, with `calls` of the tool each time.
    void expectError(const Bytes& request, unsigned int code, const std::string& text,
                     const std::string& calls) {
        SCOPED_TRACE(::testing::PrintToString(request));
        expectResponse(process(request), code, text);
        EXPECT_EQ(noted(), calls);
        m_listener.frames.clear();
        EXPECT_THAT(send(request), ElementsAre(8, 'E', request[2], request[3], code >> 24,
                                               code >> 16 & 0xFF, code >> 8 & 0xFF, code & 0xFF));
        EXPECT_THAT(m_listener.frames, ElementsAre(debugFrame(text)));
        EXPECT_EQ(noted(), calls);
    }

    void expectError(const Tokens& list, unsigned int code, const std::string& text,
                     const std::string& calls) {
        SCOPED_TRACE(::testing::PrintToString(list));
        expectResponse(process(list), code, text);
        EXPECT_EQ(noted(), calls);
        m_listener.lines.clear();
        EXPECT_EQ(send(list), string_format("audio Error 0x%X", code));
        EXPECT_THAT(m_listener.lines, ElementsAre("Info \"" + text + "\""));
        EXPECT_EQ(noted(), calls);
    }

    RecordingListener m_listener;
};

const Bytes kActivateRequest = {0x04, 'E', 0x80, 1};
const Bytes kDeactivateRequest = {0x04, 'E', 0x80, 0};

} // namespace

TEST_F(ECmdTest, HasItsIdAndName) {
    EXPECT_EQ(audio().tavrin_getName(), 'E');
    EXPECT_EQ(audio().ascii_getName(), "audio");
    EXPECT_EQ(ECmd::getInstance(), ECmd::getInstance());
}

TEST_F(ECmdTest, ABinaryRequestSendsTheSignalOfItsState) {
    for (const auto& [state, calls] :
         Rows<unsigned char, const char*>{{1, kActivated}, {0, kDeactivated}}) {
        SCOPED_TRACE(calls);
        expectResponse(process(Bytes{0x04, 'E', 0x80, state}), 0, "");
        EXPECT_EQ(noted(), calls);
        EXPECT_THAT(send(Bytes{0x04, 'E', 0x80, state}), ElementsAre(8, 'E', 0x80, state, 0, 0, 0, 0));
        EXPECT_EQ(noted(), calls);
        expectResponse(Response(audio().setState(state)), 0, "");
        EXPECT_EQ(noted(), calls);
    }
    EXPECT_THAT(m_listener.frames, IsEmpty());
}

TEST_F(ECmdTest, ALineSendsTheSignalOfItsWord) {
    const Rows<const char*, const char*> rows = {
        {"activate", kActivated},      {"activated", kActivated},
        {"activate now", kActivated},  {"deactivate", kDeactivated},
        {"deactivated", kDeactivated}, {"deactivateactivate", kDeactivated},
    };
    for (const auto& [word, calls] : rows) {
        SCOPED_TRACE(word);
        expectResponse(process(tokens({"audio", word})), 0, "");
        EXPECT_EQ(noted(), calls);
        EXPECT_EQ(send(tokens({"audio", word})), "audio ok");
        EXPECT_EQ(noted(), calls);
        const std::string text = word;
        EXPECT_EQ(send({token("audio"), {text.begin(), text.end()}}), "audio ok") << "without a zero";
        EXPECT_EQ(noted(), calls);
    }
    EXPECT_THAT(m_listener.lines, IsEmpty());
}

TEST_F(ECmdTest, AnyNumberOfSignalledProcessesIsASuccess) {
    for (const char* end : {"exit 1", "exit 2", "exit 127", "exit 255", "kill -9 $$"}) {
        SCOPED_TRACE(end);
        toolEndsWith(end);
        expectResponse(process(kActivateRequest), 0, "");
        expectResponse(process(kDeactivateRequest), 0, "");
        EXPECT_EQ(noted(), std::string(kActivated) + kDeactivated);
    }
}

TEST_F(ECmdTest, NoSignalledProcessIsAnErrorThatNamesTheActivatingSignal) {
    toolEndsWith("exit 0");
    expectError(kActivateRequest, kAudioError, kNotRunning, kActivated);
    expectError(kDeactivateRequest, kAudioError, kNotRunning, kDeactivated);
    expectError(tokens({"audio", "activate"}), kAudioError, kNotRunning, kActivated);
    expectError(tokens({"audio", "deactivate"}), kAudioError, kNotRunning, kDeactivated);
}

TEST_F(ECmdTest, ACallWhoseEndCannotBeLearntIsAnError) {
    ::signal(SIGCHLD, SIG_IGN);
    expectError(kActivateRequest, kAudioError,
                "system call error: slay -s SIGUSR1 deva-nvaudio returned with rc: -1", kActivated);
    expectError(tokens({"audio", "deactivate"}), kAudioError,
                "system call error: slay -s SIGUSR2 deva-nvaudio returned with rc: -1", kDeactivated);
    ::signal(SIGCHLD, SIG_DFL);
    expectResponse(process(kActivateRequest), 0, "");
}

TEST_F(ECmdTest, ACallThatCannotBeMadeIsAnError) {
    inFreshProcess([] {
        refuseSystemCalls({SYS_clone, SYS_clone3, SYS_vfork, SYS_fork}, EAGAIN);
        expectResponse(process(kActivateRequest), kAudioError,
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
        expectResponse(process(kActivateRequest), 0, "");
        EXPECT_EQ(noted(), kActivated);
    }
    ::sigprocmask(SIG_UNBLOCK, &blocked, nullptr);
    ::signal(SIGHUP, SIG_DFL);
}

TEST_F(ECmdTest, NothingIsRetriedAndNothingRemembered) {
    toolEndsWith("exit 0");
    process(kActivateRequest);
    EXPECT_EQ(noted(), kActivated);
    toolEndsWith("exit 1");
    for (int time = 0; time < 3; ++time)
        expectResponse(process(kActivateRequest), 0, "");
    EXPECT_EQ(noted(), std::string(kActivated) + kActivated + kActivated);
}

TEST_F(ECmdTest, RefusesWhatIsNoState) {
    for (const unsigned char state : Bytes{2, 3, 0x7F, 0x80, 0xFF})
        expectError(Bytes{0x04, 'E', 0x80, state}, kInvalidState, "invalid state requested", "");
}

TEST_F(ECmdTest, RefusesFramesOfAnotherKind) {
    expectError(Bytes{0x04, 'E', 0x81, 1}, kAudioError, "Unknown 'E' subcommand: 81", "");
    expectError(Bytes{0x04, 'E', 0x00, 1}, kAudioError, "Unknown 'E' subcommand: 0", "");
    expectError(Bytes{0x04, 'E', 0x0A, 1}, kAudioError, "Unknown 'E' subcommand: a", "");
    expectError(Bytes{0x04, 'E', 0xFF, 9}, kAudioError, "Unknown 'E' subcommand: ff", "");
    expectError(Bytes{0x05, 'E', 0x80, 1, 0}, kAudioError, kInvalidLength, "");
    expectError(Bytes{0x05, 'E', 0x81, 1, 0}, kAudioError, kInvalidLength, "");
    for (const Bytes& frame : {Bytes{0x03, 'E', 0x80}, Bytes{0x02, 'E'}, Bytes{}})
        expectResponse(process(frame), kAudioError, kInvalidLength);
    expectResponse(Response(audio().process(static_cast<Bytes*>(nullptr))), kAudioError, kInvalidLength);
    m_listener.frames.clear();
    EXPECT_THROW(send(Bytes{0x03, 'E', 0x80}), std::out_of_range);
    EXPECT_THAT(m_listener.frames,
                ElementsAre(debugFrame(kInvalidLength), debugFrame("request size < 4")));
    EXPECT_FALSE(exists(kNoted));
}

TEST_F(ECmdTest, RefusesLinesOfAnotherKind) {
    expectError(tokens({"audio"}), kAudioError, kInvalidLength, "");
    expectError(tokens({"audio", "activate", "now"}), kAudioError, kInvalidLength, "");
    expectError(tokens({"audio", "wrong", "now"}), kAudioError, kInvalidLength, "");
    expectResponse(process(Tokens{}), kAudioError, kInvalidLength);
    for (const char* word :
         {"", "activat", "Activate", "ACTIVATE", " activate", "deactivat", "reactivate", "1", "%s%n%x"})
        expectError(tokens({"audio", word}), kGenericError,
                    "unknown subcommand '" + std::string(word) + "'", "");
    expectError({token("audio"), {}}, kGenericError, "unknown subcommand ''", "");
    expectError({token("audio"), {'a', 'c', 't'}}, kGenericError, "unknown subcommand 'act'", "");
}

TEST_F(ECmdTest, NoResponseIsLeftOver) {
    const unsigned int before = ProcessResponse::m_counter;
    send(kActivateRequest);
    send(tokens({"audio", "deactivate"}));
    send(Bytes{0x04, 'E', 0x80, 2});
    send(tokens({"audio", "wrong"}));
    EXPECT_EQ(ProcessResponse::m_counter, before);
}
