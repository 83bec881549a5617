#include <algorithm>
#include <chrono>

#include "commands/cReadCmd.h"
#include "support/ErrorOutput.h"
#include "support/UnitFixture.h"

namespace {

Bytes requestFor(const std::string& text, unsigned char limitHigh = 0, unsigned char limitLow = 30) {
    const auto size = static_cast<unsigned char>(5 + text.size());
    return joined({size, 'c', 0x01, limitHigh, limitLow}, bytesOf(text));
}

class cReadCmdBinaryTest : public CommandTest<cReadCmd, UnitFixture> {
protected:
    static void expectOutput(const Bytes& request, const std::string& output) {
        expectResponse(request, bytesOf(output));
    }
};

} // namespace

TEST_F(cReadCmdBinaryTest, AnswersWhatTheCommandWrote) {
    const Rows<const char*, const char*> rows = {
        {"echo hello", "hello\n"},       {"printf abc", "abc"}, {"echo out; echo err >&2", "out\nerr\n"},
        {"echo out; exit 1", "out\n"},   {"false", ""},         {":", ""},
        {"echo '~ %s %n'", "~ %s %n\n"},
    };
    for (const auto& [text, output] : rows)
        expectOutput(requestFor(text), output);
}

TEST_F(cReadCmdBinaryTest, AcceptsFrom6To255Bytes) {
    const std::string text = "echo " + std::string(245, 'x');
    ASSERT_EQ(requestFor(text).size(), 255u);
    expectOutput(requestFor(text), std::string(245, 'x') + "\n");
    ASSERT_EQ(requestFor(":").size(), 6u);
    expectOutput(requestFor(":"), "");
}

TEST_F(cReadCmdBinaryTest, CutsTheOutputAt246Bytes) {
    for (const std::size_t size : {245u, 246u, 247u, 1000u}) {
        SCOPED_TRACE(size);
        const std::string text = "printf %0" + std::to_string(size) + "d 7";
        std::string output = std::string(size - 1, '0') + "7";
        output.resize(std::min<std::size_t>(size, 246));
        expectOutput(requestFor(text), output);
    }
}

TEST_F(cReadCmdBinaryTest, NoOutputIsReportedOnStandardError) {
    EXPECT_EQ(errorOutputOf([] { expectOutput(requestFor("true"), ""); }),
              "Prod.testserver: File /tmp/resp.txt is empty\n");
}

TEST_F(cReadCmdBinaryTest, WhatIsNoRequestForItIsRefused) {
    const char* const tooShort = "Command 'c': too short! min.6 bytes";
    expectRefused(RefusedFrames{
        {{2, 'c'}, kGenericError, tooShort},
        {{3, 'c', 1}, kGenericError, tooShort},
        {{5, 'c', 1, 0, 5}, kGenericError, tooShort},
        {{5, 'c', 2, 0, 5}, kGenericError, tooShort},
        {{6, 'c', 0, 0, 5, ':'}, kGenericError, "unsupported c subcommand"},
        {{6, 'c', 2, 0, 5, ':'}, kGenericError, "unsupported c subcommand"},
        {{6, 'c', 2, 0, 5, 0x7F}, kGenericError, "unsupported c subcommand"},
    });
    expectNothingRefused(kGenericError, tooShort);
}

TEST_F(cReadCmdBinaryTest, AByteThatCannotBePrintedIsNamedAndNothingRuns) {
    const Rows<const char*, const char*> rows = {{"\n", "0A"},    {"\x01", "01"}, {"\x1F", "1F"},
                                                 {"\x7F", "7F"},  {"\x80", "80"}, {"\xFF", "FF"},
                                                 {"\t\x7F", "09"}};
    for (const auto& [character, digits] : rows) {
        expectRefused(requestFor(std::string("touch /tmp/ran") + character), kGenericError,
                      std::string("invalid character in input command: ") + digits);
        EXPECT_FALSE(exists("/tmp/ran"));
        EXPECT_FALSE(exists(kCaptureFile));
    }
    expectRefused(requestFor(std::string("touch /tmp/ran\0", 15)), kGenericError,
                  "invalid character in input command: 00");
}

TEST_F(cReadCmdBinaryTest, EveryPrintableByteIsAccepted) {
    std::string text = "#"; // a comment, in which all of them may stand
    for (char character = 0x20; character < 0x7F; ++character)
        text += character;
    EXPECT_EQ(run(requestFor(text))->code, 0u);
}

TEST_F(cReadCmdBinaryTest, TheLimitIsInSeconds) {
    const auto begin = std::chrono::steady_clock::now();
    const Response response = run(requestFor("echo before; sleep 1000", 0, 1));
    const auto took = std::chrono::steady_clock::now() - begin;
    expectError(response, kGenericError,
                "Process echo before; sleep 1000 was killed after timeout\nstdout+err:\nbefore\n\n");
    EXPECT_GE(took, std::chrono::seconds(1));
    EXPECT_LT(took, std::chrono::seconds(30));
}

TEST_F(cReadCmdBinaryTest, TheLimitsFirstByteCounts256) {
    // Were the byte worth one second only, this would be too long.
    expectOutput(requestFor("sleep 1.2; echo done", 1, 0), "done\n");
}

TEST_F(cReadCmdBinaryTest, TheAnswerEchoesTheLimitsFirstByte) {
    expectOutput(requestFor("echo x", 0xFF, 0xFF), "x\n");
}
