// Running a command line: how its end is judged, and what becomes of the capture file.
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "commands/cReadCmd.h"
#include "support/DescriptorLimit.h"
#include "support/RefusedCalls.h"
#include "support/UnitFixture.h"

using ::testing::MatchesRegex;

namespace {

constexpr char kNoCaptureFile[] = "Error, the /tmp/resp.txt could not be created";

/// What stands in the capture file's place before a command runs.
struct Planted {
    const char* what;
    void (*plant)();
};

const Planted kLink = {"a symbolic link",
                       [] { ASSERT_EQ(::symlink("/tmp/precious", kCaptureFile), 0); }};
const Planted kPipe = {"a pipe", [] { ASSERT_EQ(::mkfifo(kCaptureFile, 0600), 0); }};

class cReadCmdShellTest : public CommandTest<cReadCmd, UnitFixture> {
protected:
    static ProcessResponse execute(const std::string& text, unsigned long long limit = 60) {
        return *Response(command().executeCommand(limit, text.c_str()));
    }

    static Words line(const std::string& text) { return {"exec", "command", "60", text}; }

    static Bytes frame(const std::string& text) {
        return joined({static_cast<unsigned char>(5 + text.size()), 'c', 1, 0, 60}, bytesOf(text));
    }

    static void expectError(const ProcessResponse& response, const std::string& text,
                            char protocol = 0) {
        ::expectError(response, kGenericError, text, protocol);
    }

    /// Runs into its limit what does not end by itself when it has run `text`; gives it more time until
    /// it had run that.
    static void expectKilled(const std::string& text, const std::string& output) {
        constexpr unsigned long long kPatience = 60;
        const std::string whole = text + "; touch /tmp/ran; sleep 1000";
        std::string answer;
        for (unsigned long long limit = 1; limit < kPatience && !exists("/tmp/ran"); limit *= 2) {
            const ProcessResponse response = execute(whole, limit);
            EXPECT_EQ(response.code, kGenericError);
            EXPECT_EQ(response.protocol, 0);
            answer = response.message;
        }
        remove("/tmp/ran");
        EXPECT_EQ(answer,
                  "Process " + whole + " was killed after timeout\nstdout+err:\n" + output + "\n");
    }

    static void expectOutput(const std::string& text, const std::string& output) {
        expectSuccess(execute(text));
        EXPECT_EQ(read(kCaptureFile), output);
    }
};

} // namespace

TEST_F(cReadCmdShellTest, AnEndByItselfIsSuccessWhateverTheExitCode) {
    for (const int code : {0, 1, 2, 127, 128, 255}) {
        SCOPED_TRACE(code);
        expectOutput("echo out; exit " + std::to_string(code), "out\n");
    }
    const ProcessResponse unknown = execute("no_such_program");
    EXPECT_EQ(unknown.code, 0u);
    EXPECT_THAT(read(kCaptureFile), ::testing::HasSubstr("not found"));
}

TEST_F(cReadCmdShellTest, AnEndByASignalIsAnError) {
    const Rows<const char*, int> rows = {
        {"KILL", 9}, {"TERM", 15}, {"SEGV", 11}, {"HUP", 1}, {"USR1", 10}};
    for (const auto& [name, number] : rows) {
        SCOPED_TRACE(name);
        const ProcessResponse response = execute(std::string("echo $$; kill -") + name + " $$");
        std::string pid = read(kCaptureFile);
        pid.pop_back();
        expectError(response, "child process for c command received signal pid: " + pid +
                                  ", returncode: " + std::to_string(number));
    }
}

TEST_F(cReadCmdShellTest, ACommandThatOutlivesItsLimitIsKilledAndItsOutputReported) {
    expectKilled("echo out; echo err >&2", "out\nerr\n");
    expectOutput("echo next", "next\n");
}

TEST_F(cReadCmdShellTest, ACommandThatCannotBeKilledIsReported) {
    inFreshProcess([] {
        refuseSystemCalls({SYS_kill}, EPERM);
        expectError(execute("sleep 3", 1), "Process sleep 3 could not be killed after timeout\n");
    });
}

TEST_F(cReadCmdShellTest, ACommandThatCannotBeWaitedForIsReported) {
    ::signal(SIGCHLD, SIG_IGN);
    expectError(execute("true"),
                "Timer timeout for c command child process with unknown error errorno: " +
                    std::to_string(ECHILD));
    ::signal(SIGCHLD, SIG_DFL);
}

TEST_F(cReadCmdShellTest, AShellThatCannotBeStartedIsReported) {
    inFreshProcess([] {
        refuseSystemCalls({SYS_clone, SYS_clone3, SYS_vfork, SYS_fork}, EAGAIN);
        expectError(execute("true"), "spawn for starting /bin/sh failed");
    });
}

TEST_F(cReadCmdShellTest, APipeThatCannotBeMadeIsReported) {
    // Once before: the sanitizers need descriptors of their own when they see a type for the first time.
    execute("true");
    remove(kCaptureFile);
    const ProcessResponse response = [] {
        const NoMoreDescriptors none;
        return execute("true");
    }();
    expectError(response, "could not create a pipe for the parent process");
    EXPECT_FALSE(exists(kCaptureFile));
}

TEST_F(cReadCmdShellTest, AFailureLeavesNoDescriptorOpen) {
    ASSERT_EQ(::mkdir(kCaptureFile, 0700), 0);
    const int before = ::dup(STDERR_FILENO);
    ::close(before);
    execute("true");
    remove(kCaptureFile);
    execute("kill -9 $$");
    execute("sleep 1000", 1);
    execute("true");
    const int after = ::dup(STDERR_FILENO);
    ::close(after);
    EXPECT_EQ(after, before);
}

TEST_F(cReadCmdShellTest, ADirectoryInPlaceOfTheCaptureFileIsReported) {
    ASSERT_EQ(::mkdir(kCaptureFile, 0700), 0);
    expectError(execute("touch /tmp/ran"), kNoCaptureFile);
    EXPECT_FALSE(exists("/tmp/ran"));
    remove(kCaptureFile);
    expectOutput("echo again", "again\n");
}

TEST_F(cReadCmdShellTest, WhatWasPutInPlaceOfTheCaptureFileIsNotTouched) {
    write("/tmp/precious", "precious");
    const Planted rows[] = {
        kLink,
        {"a link to nothing", [] { ASSERT_EQ(::symlink("/tmp/none", kCaptureFile), 0); }},
        {"a hard link", [] { ASSERT_EQ(::link("/tmp/precious", kCaptureFile), 0); }},
        kPipe,
        {"an older answer", [] { write(kCaptureFile, "a much longer answer of an earlier command"); }},
    };
    for (const Planted& row : rows) {
        SCOPED_TRACE(row.what);
        remove(kCaptureFile);
        row.plant();
        expectOutput("echo mine", "mine\n");
        struct stat information {};
        ASSERT_EQ(::lstat(kCaptureFile, &information), 0);
        EXPECT_TRUE(S_ISREG(information.st_mode));
        EXPECT_EQ(information.st_mode & 0777u, 0600u);
        EXPECT_EQ(read("/tmp/precious"), "precious");
        EXPECT_FALSE(exists("/tmp/none"));
    }
}

TEST_F(cReadCmdShellTest, AnEarlierCommandCannotWriteIntoALaterAnswer) {
    expectOutput(
        "(while [ ! -e /tmp/go ]; do sleep 0.01; done; echo LATE; touch /tmp/written) & echo first",
        "first\n");
    expectOutput("echo second; touch /tmp/go; while [ ! -e /tmp/written ]; do sleep 0.01; done",
                 "second\n");
}

TEST_F(cReadCmdShellTest, WhatIsPutInPlaceOfTheCaptureFileMeanwhileIsAnswered) {
    write("/tmp/other", "other");
    const Rows<const char*, const char*, const char*, const char*> rows = {
        {"a file", "echo lost; cp /tmp/other /tmp/o; mv /tmp/o /tmp/resp.txt; echo lost",
         "base64(b3RoZXI=)", "other"},
        {"a new file", "echo lost; rm /tmp/resp.txt; echo A >/tmp/resp.txt", "base64(QQo=)", "A\n"},
        {"a link", "ln -sf /tmp/other /tmp/resp.txt; echo lost", "base64(b3RoZXI=)", "other"},
        {"the file, shorter", "echo lost; : >/tmp/resp.txt", "base64()", ""},
    };
    for (const auto& [what, text, base64, output] : rows) {
        SCOPED_TRACE(what);
        expectResponse(line(text), base64);
        expectResponse(frame(text), bytesOf(output));
    }
    expectOutput("echo mine", "mine\n");
    EXPECT_EQ(read("/tmp/other"), "other");
}

TEST_F(cReadCmdShellTest, WhenTheCommandRemovesTheCaptureFileThereIsNothingToAnswer) {
    constexpr char kGone[] = "cannot open /tmp/resp.txt, no information available";
    expectError(*run(line("echo lost; rm /tmp/resp.txt")), kGone, 'a');
    expectError(*run(frame("echo lost; rm /tmp/resp.txt")), kGone, 't');
    expectKilled("echo lost; rm /tmp/resp.txt", "");
}

TEST_F(cReadCmdShellTest, WhatCannotBeReadIsToldAndNeverWaitedFor) {
    expectError(*run(line("rm /tmp/resp.txt; mkdir /tmp/resp.txt")),
                "cannot read /tmp/resp.txt: Is a directory", 'a');
    remove(kCaptureFile);
    expectError(*run(line("truncate -s 8T /tmp/resp.txt")),
                "cannot read /tmp/resp.txt: Cannot allocate memory", 'a');
    expectKilled("truncate -s 8T /tmp/resp.txt", "cannot read /tmp/resp.txt: Cannot allocate memory");
    expectResponse(line("ln -sf /dev/zero /tmp/resp.txt"), "base64()");
}

TEST_F(cReadCmdShellTest, TheOutputOfAKilledCommandEndsAtItsFirstZeroByte) {
    expectKilled("printf 'A\\000B'", "A");
}

TEST_F(cReadCmdShellTest, ACaptureFileThatCannotBeRemovedIsTruncatedAndUsed) {
    write(kCaptureFile, "a much longer answer of an earlier command");
    inFreshProcess([] {
        refuseSystemCalls({SYS_unlink, SYS_unlinkat}, EPERM);
        expectOutput("echo mine", "mine\n");
    });
}

TEST_F(cReadCmdShellTest, WhatCannotBeRemovedAndIsNoFileIsNotTouched) {
    write("/tmp/precious", "precious");
    for (const Planted& row : {kLink, kPipe}) {
        SCOPED_TRACE(row.what);
        remove(kCaptureFile);
        row.plant();
        inFreshProcess([] {
            refuseSystemCalls({SYS_unlink, SYS_unlinkat}, EPERM);
            expectError(execute("touch /tmp/ran"), kNoCaptureFile);
        });
        EXPECT_FALSE(exists("/tmp/ran"));
        EXPECT_EQ(read("/tmp/precious"), "precious");
    }
}

// Its beginning is in the pipe by then, and its end would have the shell run that.
TEST_F(cReadCmdShellTest, ATextThatCannotBeFedIsNotRun) {
    inFreshProcess([] {
        const std::string text = "touch /tmp/ran #" + std::string(1 << 20, 'x');
        refuseWritesBelow(static_cast<std::uint32_t>(text.size()), EIO);
        expectError(execute(text), "could not write the command to /bin/sh: Input/output error");
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "the shell is still there";
    });
    EXPECT_FALSE(exists("/tmp/ran"));
}

TEST_F(cReadCmdShellTest, StandardInputOutputAndErrorAreAsDocumented) {
    const ProcessResponse response =
        execute("for n in 0 1 2; do readlink /proc/$$/fd/$n | tr -d '0-9'; done; ls /proc/$$/fd");
    EXPECT_EQ(response.code, 0u);
    EXPECT_THAT(read(kCaptureFile),
                MatchesRegex("pipe:\\[\\]\n/tmp/resp.txt\n/tmp/resp.txt\n0\n1\n2\n"));
}
