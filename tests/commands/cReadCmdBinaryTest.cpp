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

class cReadCmdBinaryTest : public UnitFixture {
protected:
    static Response process(Bytes request) {
        return Response(cReadCmd::getInstance()->tavrin_preCheck(&request));
    }
};

} // namespace

TEST_F(cReadCmdBinaryTest, HasItsIdAndName) {
    EXPECT_EQ(cReadCmd::getInstance()->tavrin_getName(), 'c');
    EXPECT_EQ(cReadCmd::getInstance()->ascii_getName(), "exec");
    EXPECT_EQ(cReadCmd::getInstance(), cReadCmd::getInstance());
}

TEST_F(cReadCmdBinaryTest, AnswersWhatTheCommandWrote) {
    const Rows<const char*, const char*> rows = {
        {"echo hello", "hello\n"},       {"printf abc", "abc"}, {"echo out; echo err >&2", "out\nerr\n"},
        {"echo out; exit 1", "out\n"},   {"false", ""},         {":", ""},
        {"echo '~ %s %n'", "~ %s %n\n"},
    };
    for (const auto& [text, output] : rows) {
        SCOPED_TRACE(text);
        const Response response = process(requestFor(text));
        EXPECT_EQ(response->code, 0u);
        EXPECT_EQ(response->message, "");
        EXPECT_EQ(frameOf(*response), answerWith(output));
    }
}

TEST_F(cReadCmdBinaryTest, AcceptsFrom6To255Bytes) {
    const std::string text = "echo " + std::string(245, 'x');
    ASSERT_EQ(requestFor(text).size(), 255u);
    EXPECT_EQ(frameOf(*process(requestFor(text))), answerWith(std::string(245, 'x') + "\n"));
    ASSERT_EQ(requestFor(":").size(), 6u);
    EXPECT_EQ(frameOf(*process(requestFor(":"))), answerWith(""));
}

TEST_F(cReadCmdBinaryTest, CutsTheOutputAt246Bytes) {
    for (const std::size_t size : {245u, 246u, 247u, 1000u}) {
        SCOPED_TRACE(size);
        const std::string text = "printf %0" + std::to_string(size) + "d 7";
        std::string output = std::string(size - 1, '0') + "7";
        output.resize(std::min<std::size_t>(size, 246));
        EXPECT_EQ(frameOf(*process(requestFor(text))), answerWith(output));
    }
}

TEST_F(cReadCmdBinaryTest, NoOutputIsReportedOnStandardError) {
    ::testing::internal::CaptureStderr();
    const Response response = process(requestFor("true"));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Prod.testserver: File /tmp/resp.txt is empty\n");
    EXPECT_EQ(frameOf(*response), answerWith(""));
}

TEST_F(cReadCmdBinaryTest, WhatIsNoRequestForItIsRefused) {
    const Rows<const char*, Bytes, const char*> rows = {
        {"2 bytes", {2, 'c'}, "Command 'c': too short! min.6 bytes"},
        {"3 bytes", {3, 'c', 1}, "Command 'c': too short! min.6 bytes"},
        {"no text", {5, 'c', 1, 0, 5}, "Command 'c': too short! min.6 bytes"},
        {"no text and wrong sub-command", {5, 'c', 2, 0, 5}, "Command 'c': too short! min.6 bytes"},
        {"sub-command 0", {6, 'c', 0, 0, 5, ':'}, "unsupported c subcommand"},
        {"sub-command 2", {6, 'c', 2, 0, 5, ':'}, "unsupported c subcommand"},
        {"sub-command and text wrong", {6, 'c', 2, 0, 5, 0x7F}, "unsupported c subcommand"},
    };
    for (const auto& [what, request, text] : rows) {
        SCOPED_TRACE(what);
        const Response response = process(request);
        EXPECT_EQ(response->code, kGenericError);
        EXPECT_EQ(response->message, text);
        EXPECT_EQ(response->protocol, 0);
    }
}

TEST_F(cReadCmdBinaryTest, ARequestWithoutBytesIsTooShort) {
    Bytes empty;
    const Response response(cReadCmd::getInstance()->process(&empty));
    EXPECT_EQ(response->message, "Command 'c': too short! min.6 bytes");
    const Response none(cReadCmd::getInstance()->process(static_cast<Bytes*>(nullptr)));
    EXPECT_EQ(none->message, "Command 'c': too short! min.6 bytes");
}

TEST_F(cReadCmdBinaryTest, AByteThatCannotBePrintedIsNamedAndNothingRuns) {
    const Rows<const char*, const char*> rows = {{"\n", "0A"},    {"\x01", "01"}, {"\x1F", "1F"},
                                                 {"\x7F", "7F"},  {"\x80", "80"}, {"\xFF", "FF"},
                                                 {"\t\x7F", "09"}};
    for (const auto& [character, digits] : rows) {
        SCOPED_TRACE(digits);
        const Response response = process(requestFor(std::string("touch /tmp/ran") + character));
        EXPECT_EQ(response->code, kGenericError);
        EXPECT_EQ(response->message, std::string("invalid character in input command: ") + digits);
        EXPECT_EQ(response->protocol, 0);
        EXPECT_FALSE(exists("/tmp/ran"));
        EXPECT_FALSE(exists(kCaptureFile));
    }
    const Response zero = process(requestFor(std::string("touch /tmp/ran\0", 15)));
    EXPECT_EQ(zero->message, "invalid character in input command: 00");
}

TEST_F(cReadCmdBinaryTest, EveryPrintableByteIsAccepted) {
    std::string text = "#"; // a comment, in which all of them may stand
    for (char character = 0x20; character < 0x7F; ++character)
        text += character;
    EXPECT_EQ(process(requestFor(text))->code, 0u);
}

TEST_F(cReadCmdBinaryTest, TheLimitIsInSeconds) {
    const auto begin = std::chrono::steady_clock::now();
    const Response response = process(requestFor("echo before; sleep 1000", 0, 1));
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(response->code, kGenericError);
    EXPECT_EQ(response->message,
              "Process echo before; sleep 1000 was killed after timeout\nstdout+err:\nbefore\n\n");
    EXPECT_EQ(response->protocol, 0);
    EXPECT_GE(took, std::chrono::seconds(1));
    EXPECT_LT(took, std::chrono::seconds(30));
}

TEST_F(cReadCmdBinaryTest, TheLimitsFirstByteCounts256) {
    // Were the byte worth one second only, this would be too long.
    EXPECT_EQ(frameOf(*process(requestFor("sleep 1.2; echo done", 1, 0))), answerWith("done\n", 1));
}

TEST_F(cReadCmdBinaryTest, TheAnswerEchoesTheLimitsFirstByte) {
    EXPECT_EQ(frameOf(*process(requestFor("echo x", 0xFF, 0xFF))), answerWith("x\n", 0xFF));
}
