#include "client/BinaryRequest.h"

#include <gtest/gtest.h>

#include <utility>

#include "FailureKind.h"
#include "FakeLine.h"
#include "client/Hex.h"
#include "client/RequestFrame.h"

namespace station {
namespace {

using testing::Values;

struct Encoded {
    std::string name;
    std::vector<std::string> arguments;
    std::string frame;

    friend void PrintTo(const Encoded& row, std::ostream* out) {
        *out << testing::PrintToString(std::pair(row.name, row.arguments));
    }
};

class BinaryRequestEncodes : public testing::TestWithParam<Encoded> {};

TEST_P(BinaryRequestEncodes, To) {
    const auto request = BinaryRequest::encode(GetParam().name, GetParam().arguments);
    EXPECT_EQ(hexDigits(request.bytes()), GetParam().frame);
    EXPECT_FALSE(request.isRaw());
    EXPECT_EQ(request.isAnswered(), GetParam().name != "ack");
    EXPECT_EQ(request.asksForStatus(), GetParam().frame == "0273");
}

INSTANTIATE_TEST_SUITE_P(Frame, BinaryRequestEncodes,
                         Values(Encoded{"status", {}, "0273"}, Encoded{"status", {"01"}, "037301"},
                                Encoded{"status", {"02"}, "037302"}, Encoded{"ack", {}, "0206"},
                                Encoded{"exec",
                                        {"command", "5", "w"},
                                        "06630100"
                                        "0577"},
                                Encoded{"exec", {"command", "0", "ls -l"}, "0A630100006C73202D6C"},
                                Encoded{"exec", {"commandfoo", "65535", "ls"}, "076301FFFF6C73"},
                                Encoded{"exec", {"command", "0x10", "ls"}, "07630100106C73"},
                                Encoded{"exec", {"command", "010", "ls"}, "07630100086C73"},
                                Encoded{"exec", {"command", "5", "\"~"}, "0763010005227E"},
                                Encoded{"exec", {"command", "5", "hex(6C 73)"}, "07630100056C73"},
                                Encoded{"exec", {"command", "5", "base64(bHM=)"}, "07630100056C73"},
                                Encoded{"exec",
                                        {"command", "5", std::string(250, 'a')},
                                        "FF63010005" + hexDigits(std::string(250, 'a'))}));

struct Refused {
    std::string name;
    std::vector<std::string> arguments;
    std::string message;

    friend void PrintTo(const Refused& row, std::ostream* out) {
        *out << testing::PrintToString(std::pair(row.name, row.arguments));
    }
};

class BinaryRequestRefuses : public testing::TestWithParam<Refused> {};

TEST_P(BinaryRequestRefuses, WhatHasNoBinaryForm) {
    EXPECT_THAT(failureOf([] { BinaryRequest::encode(GetParam().name, GetParam().arguments); }),
                FailsWith(Failure::Kind::InvalidRequest, GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, BinaryRequestRefuses,
    Values(Refused{"graph",
                   {},
                   "'graph' has no binary form here (there is one for ack, audio, blockdev, "
                   "diag, exec, graphic, i2c, memory, port, serial, status)"},
           Refused{"graph",
                   {"x"},
                   "send its frame with raw \"hex(...)\", or use the ASCII form: --target tcp"},
           Refused{"Memory", {"read", "8bit", "1", "0"}, "'Memory' has no binary form"},
           Refused{"", {}, "'' has no binary form"},
           Refused{"Status", {}, "'Status' has no binary form"},
           Refused{"status", {"03"}, "status 03 has no binary form"},
           Refused{"status", {"04"}, "use the ASCII form: --target tcp:HOST:PORT, or --protocol ascii"},
           Refused{"status", {"1"}, "status 1 has no binary form"},
           Refused{"status", {""}, "status  has no binary form"},
           Refused{"status", {"01", "02"}, "at most one argument"},
           Refused{"exec", {}, "exec command SECONDS TEXT"},
           Refused{"exec", {"command", "5"}, "exec command SECONDS TEXT"},
           Refused{"exec", {"command", "5", "ls", "-l"}, "exec command SECONDS TEXT"},
           Refused{"exec", {"comman", "5", "ls"}, "exec command SECONDS TEXT"},
           Refused{"exec", {"file", "5", "ls"}, "exec command SECONDS TEXT"},
           Refused{"exec", {"command", "-1", "ls"}, "0 to 65535 seconds, and not '-1'; use the ASCII"},
           Refused{"exec", {"command", "65536", "ls"}, "and not '65536'"},
           Refused{"exec", {"command", "soon", "ls"}, "and not 'soon'"},
           Refused{"exec", {"command", "5s", "ls"}, "and not '5s'"},
           Refused{"exec", {"command", "", "ls"}, "and not ''"},
           Refused{"exec", {"command", "0x", "ls"}, "and not"},
           Refused{"exec", {"command", "08", "ls"}, "and not '08'"},
           Refused{"exec", {"command", "5", ""}, "exec needs a text to run"},
           Refused{"exec",
                   {"command", "5", std::string(251, 'a')},
                   "the text has 251 bytes, and a binary request holds 250; use the ASCII form"},
           Refused{"exec", {"command", "5", "a\nb"}, "holds the byte 0A, and a binary request only"},
           Refused{"exec", {"command", "5", "\x1F"}, "holds the byte 1F"},
           Refused{"exec", {"command", "5", "\x7F"}, "holds the byte 7F"},
           Refused{"exec", {"command", "5", "\xC3\xA4"}, "holds the byte C3"},
           Refused{"exec", {"command", "5", "hex(00)"}, "holds the byte 00"},
           Refused{"exec", {"command", "5", "hex(123)"}, "holds an unpaired hex digit"},
           Refused{"ack", {"x"}, "ack takes no arguments"}));

struct Raw {
    std::string argument;
    std::string frame;
    bool isAnswered;

    friend void PrintTo(const Raw& row, std::ostream* out) { *out << row.argument; }
};

class BinaryRequestRaw : public testing::TestWithParam<Raw> {};

TEST_P(BinaryRequestRaw, TakesAnyBytes) {
    const auto request = BinaryRequest::raw({GetParam().argument});
    EXPECT_EQ(hexDigits(request.bytes()), GetParam().frame);
    EXPECT_TRUE(request.isRaw());
    EXPECT_EQ(request.isAnswered(), GetParam().isAnswered);
}

INSTANTIATE_TEST_SUITE_P(Bytes, BinaryRequestRaw,
                         Values(Raw{"hex(03 73 01)", "037301", true}, Raw{"hex(00)", "00", true},
                                Raw{"hex(01)", "01", true}, Raw{"hex(0106)", "0106", true},
                                Raw{"hex(0006)", "0006", true}, Raw{"hex(05 01 02)", "050102", true},
                                Raw{"hex(fF)", "FF", true}, Raw{"hex(02 06)", "0206", false},
                                Raw{"hex(04 06 00 00)", "04060000", false},
                                Raw{"base64(AnM=)", "0273", true}));

class BinaryRequestRawRefuses : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(BinaryRequestRawRefuses, WhatIsNotBytes) {
    EXPECT_THAT(failureOf([] { BinaryRequest::raw(GetParam()); }),
                FailsWith(Failure::Kind::InvalidRequest, ""));
}

INSTANTIATE_TEST_SUITE_P(Arguments, BinaryRequestRawRefuses,
                         Values(std::vector<std::string>{}, std::vector<std::string>{"0273"},
                                std::vector<std::string>{"hex(02)", "hex(73)"},
                                std::vector<std::string>{"hex()"}, std::vector<std::string>{"hex(02"},
                                std::vector<std::string>{"hex(2)"}, std::vector<std::string>{"hex(xy)"},
                                std::vector<std::string>{"base64(A)"}));

TEST(RequestFrame, HoldsAtMost255Bytes) {
    EXPECT_EQ(requestFrame('s', ""), "\x02s");
    EXPECT_EQ(requestFrame('s', std::string(253, 'x')), "\xFFs" + std::string(253, 'x'));
    EXPECT_THAT(failureOf([] { requestFrame('s', std::string(254, 'x')); }),
                FailsWith(Failure::Kind::InvalidRequest, "256 bytes does not fit in a frame of 255"));
}

UnitFrame answerTo(std::string_view echo, std::string_view code, std::string_view payload = "") {
    return UnitFrame(framed(std::string(echo) + std::string(code) + std::string(payload)));
}

const std::string kOk(4, '\0');
const std::string kRefused("\x01\x01\0\0", 4);

TEST(BinaryRequestAnswers, AreToldByWhatTheyEcho) {
    const auto exec = BinaryRequest::encode("exec", {"command", "258", "ls"});
    EXPECT_TRUE(exec.isAnsweredBy(answerTo("c\x01\x01", kOk, "text")));
    EXPECT_TRUE(exec.isAnsweredBy(answerTo("c\x01\x01", kRefused)));
    EXPECT_FALSE(exec.isAnsweredBy(answerTo("s\x01\x01", kOk)));
    EXPECT_FALSE(exec.isAnsweredBy(answerTo("c\x02\x01", kOk)));
    EXPECT_FALSE(exec.isAnsweredBy(answerTo("c\x01\x02", kOk)));
    EXPECT_FALSE(exec.isAnsweredBy(UnitFrame(statusFrame())));

    const auto file = BinaryRequest::encode("status", {"01"});
    EXPECT_TRUE(file.isAnsweredBy(answerTo(std::string("s\x01\0", 3), kOk, "text")));
    EXPECT_FALSE(file.isAnsweredBy(answerTo(std::string("s\x02\0", 3), kOk, "text")));
    EXPECT_FALSE(file.isAnsweredBy(UnitFrame(statusFrame())));

    const auto status = BinaryRequest::encode("status", {});
    EXPECT_TRUE(status.isAnsweredBy(UnitFrame(statusFrame())));
    EXPECT_TRUE(status.isAnsweredBy(answerTo("s,\x01", kRefused)));
    EXPECT_TRUE(status.isAnsweredBy(answerTo(std::string("s\0\0", 3), kRefused)));
    EXPECT_FALSE(status.isAnsweredBy(answerTo("s,\x01", kOk)));
    EXPECT_FALSE(status.isAnsweredBy(answerTo("c,\x01", kRefused)));
}

struct Shown {
    std::string payload;
    std::string text;

    friend void PrintTo(const Shown& row, std::ostream* out) {
        *out << testing::PrintToString(row.payload);
    }
};

class BinaryRequestShows : public testing::TestWithParam<Shown> {};

TEST_P(BinaryRequestShows, Payload) {
    const auto request = BinaryRequest::encode("exec", {"command", "5", "ls"});
    const Answer answer = request.answer(answerTo(std::string("c\x01\0", 3), kOk, GetParam().payload));
    EXPECT_EQ(answer.text, GetParam().text);
    EXPECT_EQ(answer.code, 0U);
    EXPECT_EQ(answer.payload, GetParam().payload);
}

INSTANTIATE_TEST_SUITE_P(Text, BinaryRequestShows,
                         Values(Shown{"", ""}, Shown{"hi\n", "hi\n"}, Shown{" a\tb\r\n~", " a\tb\r\n~"},
                                Shown{"\x1B[1m", "hex(1B 5B 31 6D)"}, Shown{"a\x7F", "hex(61 7F)"},
                                Shown{"\xC3\xA4", "hex(C3 A4)"},
                                Shown{std::string("a\0", 2), "hex(61 00)"}));

TEST(BinaryRequestAnswers, ShowARefusalAsTheAsciiFormDoes) {
    const auto request = BinaryRequest::encode("status", {});
    const Answer answer = request.answer(answerTo("s,\x01", kRefused));
    EXPECT_EQ(answer.text, "Error 0x1010000");
    EXPECT_EQ(answer.code, 0x1010000U);
    EXPECT_EQ(answer.payload, "");
    EXPECT_EQ(request.answer(answerTo("s,\x01", "\xFF\xFF\xFF\xFF")).text, "Error 0xFFFFFFFF");
}

TEST(BinaryRequestAnswers, ShowAStatusAsTheAsciiFormDoes) {
    const auto request = BinaryRequest::encode("status", {});
    EXPECT_EQ(request.answer(UnitFrame(statusFrame())).text, kStatusText);
    std::string frame = statusFrame();
    frame.replace(8, 10, std::string("\x09\x07\x19\x08\x05\xA0\x24\x12\x34\x05"));
    EXPECT_EQ(request.answer(UnitFrame(frame)).text, "\"2019/07/ 9 08:05\" A024 \"1234\" 5");
}

} // namespace
} // namespace station
