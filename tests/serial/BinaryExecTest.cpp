#include <gtest/gtest.h>

#include <string>

#include "line/BinaryLink.h"
#include "support/UnitFiles.h"

namespace {

using namespace std::string_literals;

constexpr unsigned kLimit = 20;
constexpr std::size_t kMostOutput = 246;

class BinaryExecTest : public BinaryLinkTest {
protected:
    void expectOutput(const std::string& command, const std::string& output) {
        const std::string request = execRequest(kLimit, command);
        expectExchange(request, answerFrame(request, output.substr(0, kMostOutput)));
    }
};

TEST_F(BinaryExecTest, TheFrameHoldsWhatTheCommandWrote) {
    expectExchange("\x0F"s + "c\1\0\5echo hello"s, "\x0E"s + "c\1\0\0\0\0\0hello\n"s);
}

TEST_F(BinaryExecTest, TheLimitsHighByteIsEchoed) {
    const std::string request = "\x0B"s + "c\1\1\1echo a"s;
    expectExchange(request, "\x0A"s + "c\1\1\0\0\0\0a\n"s);
}

struct Row {
    const char* command;
    std::string output;
};

TEST_F(BinaryExecTest, AnswersWhatTheCommandWrote) {
    const Row kRows[] = {
        {"echo before; exit 3", "before\n"},
        {"echo out; echo err >&2; echo out again", "out\nerr\nout again\n"},
        {"printf '\\000\\001\\002\\006\\377'", "\0\1\2\6\xFF"s},
        {"echo %s%n%d", "%s%n%d\n"},
        {"no-such-command-anywhere", "sh: 1: no-such-command-anywhere: not found\n"},
        {"echo ' ~'", " ~\n"},
    };
    for (const Row& row : kRows)
        expectOutput(row.command, row.output);
}

TEST_F(BinaryExecTest, ALimitOfZeroIsTheDefault) {
    const std::string request = execRequest(0, "echo default");
    expectExchange(request, answerFrame(request, "default\n"));
}

TEST_F(BinaryExecTest, OutputIsCutToWhatAFrameTakes) {
    for (const std::size_t size : {1U, 245U, 246U, 247U, 248U, 1000U})
        expectOutput("printf %0" + std::to_string(size) + "d 0", std::string(size, '0'));
}

TEST_F(BinaryExecTest, WithoutOutputThereIsNoPayload) {
    const std::string request = execRequest(kLimit, "true");
    expectExchange(request, "\x08"s + "c\1\0\0\0\0\0"s);
    expectErrors({"File /tmp/resp.txt is empty"});
}

TEST_F(BinaryExecTest, TheShortestRequestRunsOneCharacter) {
    const std::string request = execRequest(kLimit, ":");
    ASSERT_EQ(request.size(), 6U);
    expectExchange(request, answerFrame(request));
    expectErrors({"File /tmp/resp.txt is empty"});
}

TEST_F(BinaryExecTest, TheLongestRequestIsRun) {
    const std::string word(245, 'w');
    ASSERT_EQ(execRequest(kLimit, "echo " + word).size(), 255U);
    expectOutput("echo " + word, word + "\n");
}

struct Refusal {
    std::string request;
    const char* text;
};

TEST_F(BinaryExecTest, WhatIsNoRequestForItIsRefused) {
    const std::string ran = "/tmp/ran";
    const std::string command = "touch " + ran;
    const Refusal kRows[] = {
        {"\4c\1\0"s, "Command 'c': too short! min.6 bytes"},
        {"\5c\1\0\5"s, "Command 'c': too short! min.6 bytes"},
        {framed("c\0\0\5"s + command), "unsupported c subcommand"},
        {framed("c\2\0\5"s + command), "unsupported c subcommand"},
        {framed("c\xFF\0\5"s + command), "unsupported c subcommand"},
        {execRequest(kLimit, command + "\n"), "invalid character in input command: 0A"},
        {execRequest(kLimit, command + ";\t"), "invalid character in input command: 09"},
        {execRequest(kLimit, command + "\x1F\n"), "invalid character in input command: 1F"},
        {execRequest(kLimit, command + "\x7F"), "invalid character in input command: 7F"},
        {execRequest(kLimit, command + "\x80"), "invalid character in input command: 80"},
        {execRequest(kLimit, "\xFF" + command), "invalid character in input command: FF"},
        {execRequest(kLimit, command + "\0"s), "invalid character in input command: 00"},
    };
    for (const Refusal& row : kRows)
        expectExchange(row.request, refusal(row.request, row.text));
    EXPECT_FALSE(exists(ran));
}

TEST_F(BinaryExecTest, ACaptureFileThatCannotBeMadeIsReported) {
    if (exists(kCaptureFile))
        removeFile(kCaptureFile);
    makeFolder(kCaptureFile);
    const std::string request = execRequest(kLimit, "echo a");
    expectExchange(request, refusal(request, "Error, the /tmp/resp.txt could not be created"));
    removeFile(kCaptureFile);
    expectOutput("echo a", "a\n");
}

} // namespace
