#include <algorithm>
#include <chrono>

#include "commands/cReadCmd.h"
#include "support/UnitFixture.h"

namespace {

Bytes requestFor(const std::string& text, unsigned char limitHigh = 0, unsigned char limitLow = 30) {
    Bytes request(5 + text.size());
    request[0] = static_cast<unsigned char>(request.size());
    request[1] = 'c';
    request[2] = 0x01;
    request[3] = limitHigh;
    request[4] = limitLow;
    std::copy(text.begin(), text.end(), request.begin() + 5);
    return request;
}

Bytes answerWith(const std::string& output, unsigned char d3 = 0) {
    Bytes frame(8 + output.size());
    frame[0] = static_cast<unsigned char>(frame.size());
    frame[1] = 'c';
    frame[2] = 0x01;
    frame[3] = d3;
    std::copy(output.begin(), output.end(), frame.begin() + 8);
    return frame;
}

using cReadCmdBinaryTest = CommandTest<cReadCmd, UnitFixture>;

} // namespace

TEST_F(cReadCmdBinaryTest, AnswersWhatTheCommandWrote) {
    const Rows<const char*, const char*> rows = {
        {"echo hello", "hello\n"},       {"printf abc", "abc"}, {"echo out; echo err >&2", "out\nerr\n"},
        {"echo out; exit 1", "out\n"},   {"false", ""},         {":", ""},
        {"echo '~ %s %n'", "~ %s %n\n"},
    };
    for (const auto& [text, output] : rows) {
        SCOPED_TRACE(text);
        expectSuccess(*run(requestFor(text)), answerWith(output));
    }
}

TEST_F(cReadCmdBinaryTest, AcceptsFrom6To255Bytes) {
    const std::string text = "echo " + std::string(245, 'x');
    ASSERT_EQ(requestFor(text).size(), 255u);
    EXPECT_EQ(frameOf(*run(requestFor(text))), answerWith(std::string(245, 'x') + "\n"));
    ASSERT_EQ(requestFor(":").size(), 6u);
    EXPECT_EQ(frameOf(*run(requestFor(":"))), answerWith(""));
}

TEST_F(cReadCmdBinaryTest, CutsTheOutputAt246Bytes) {
    for (const std::size_t size : {245u, 246u, 247u, 1000u}) {
        SCOPED_TRACE(size);
        const std::string text = "printf %0" + std::to_string(size) + "d 7";
        std::string output = std::string(size - 1, '0') + "7";
        output.resize(std::min<std::size_t>(size, 246));
        EXPECT_EQ(frameOf(*run(requestFor(text))), answerWith(output));
    }
}

TEST_F(cReadCmdBinaryTest, NoOutputIsReportedOnStandardError) {
    ::testing::internal::CaptureStderr();
    const Response response = run(requestFor("true"));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Prod.testserver: File /tmp/resp.txt is empty\n");
    EXPECT_EQ(frameOf(*response), answerWith(""));
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
    Bytes empty;
    expectError(Response(command().process(&empty)), kGenericError, tooShort);
    expectError(Response(command().process(static_cast<Bytes*>(nullptr))), kGenericError, tooShort);
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
    EXPECT_EQ(frameOf(*run(requestFor("sleep 1.2; echo done", 1, 0))), answerWith("done\n", 1));
}

TEST_F(cReadCmdBinaryTest, TheAnswerEchoesTheLimitsFirstByte) {
    EXPECT_EQ(frameOf(*run(requestFor("echo x", 0xFF, 0xFF))), answerWith("x\n", 0xFF));
}
