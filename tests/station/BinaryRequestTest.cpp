#include "client/BinaryRequest.h"

#include <gtest/gtest.h>

#include "FailureKind.h"
#include "FakeLine.h"
#include "FormTables.h"
#include "Words.h"
#include "client/Hex.h"
#include "client/RequestFrame.h"
#include "wire/Catalogue.h"

namespace station {
namespace {

const SentForm kSent[] = {
    {"status", "02 73"},
    {"status 01", "03 73 01"},
    {"status 02", "03 73 02"},
    {"ack", "02 06"},
    {"exec command 5 w", "06 63 01 00 05 77"},
    {"exec command 0 'ls -l'", "0A 63 01 00 00 6C 73 20 2D 6C"},
    {"exec commandfoo 65535 ls", "07 63 01 FF FF 6C 73"},
    {"exec command 0x10 ls", "07 63 01 00 10 6C 73"},
    {"exec command 010 ls", "07 63 01 00 08 6C 73"},
    {"exec command 5 \"~", "07 63 01 00 05 22 7E"},
    {"exec command 5 'hex(6C 73)'", "07 63 01 00 05 6C 73"},
    {"exec command 5 base64(bHM=)", "07 63 01 00 05 6C 73"},
    {"exec command 5 " + std::string(250, 'a'), "FF 63 01 00 05 " + repeated("61", 250)},
};
/// Every command has a form.
std::string allNames() {
    std::string names;
    for (const wire::Command& command : wire::kCatalogue)
        names += (names.empty() ? "" : ", ") + std::string(command.name);
    return names;
}

const RefusedForm kRefused[] = {
    {"graph",
     "'graph' has no binary form here (there is one for " + allNames() + "); send its frame with raw"},
    {"graph x", "send its frame with raw \"hex(...)\", or use the ASCII form: --target tcp"},
    {"Memory read 8bit 1 0", "'Memory' has no binary form"},
    {"''", "'' has no binary form"},
    {"Status", "'Status' has no binary form"},
    {"status 03", "status 03 has no binary form"},
    {"status 04", "use the ASCII form: --target tcp:HOST:PORT, or --protocol ascii"},
    {"status 1", "status 1 has no binary form"},
    {"status ''", "status  has no binary form"},
    {"status 01 02", "at most one argument"},
    {"exec", "exec command SECONDS TEXT"},
    {"exec command 5", "exec command SECONDS TEXT"},
    {"exec command 5 ls -l", "exec command SECONDS TEXT"},
    {"exec comman 5 ls", "exec command SECONDS TEXT"},
    {"exec file 5 ls", "exec command SECONDS TEXT"},
    {"exec command -1 ls", "0 to 65535 seconds, and not '-1'; use the ASCII"},
    {"exec command 65536 ls", "and not '65536'"},
    {"exec command soon ls", "and not 'soon'"},
    {"exec command 5s ls", "and not '5s'"},
    {"exec command '' ls", "and not ''"},
    {"exec command 0x ls", "and not"},
    {"exec command 08 ls", "and not '08'"},
    {"exec command 5 ''", "exec needs a text to run"},
    {"exec command 5 " + std::string(251, 'a'),
     "the text has 251 bytes, and a binary request holds 250; use the ASCII form"},
    {"exec command 5 a\nb", "holds the byte 0A, and a binary request only"},
    {"exec command 5 \x1F", "holds the byte 1F"},
    {"exec command 5 \x7F", "holds the byte 7F"},
    {"exec command 5 \xC3\xA4", "holds the byte C3"},
    {"exec command 5 hex(00)", "holds the byte 00"},
    {"exec command 5 hex(123)", "holds an unpaired hex digit"},
    {"ack x", "ack takes no arguments"},
};
const ShownForm kShown[] = {
    {"exec command 5 ls", "", ""},
    {"exec command 5 ls", "68 69 0A", "hi\n"},
    {"exec command 5 ls", "20 61 09 62 0D 0A 7E", " a\tb\r\n~"},
    {"exec command 5 ls", "1B 5B 31 6D", "hex(1B 5B 31 6D)"},
    {"exec command 5 ls", "61 7F", "hex(61 7F)"},
    {"exec command 5 ls", "C3 A4", "hex(C3 A4)"},
    {"exec command 5 ls", "61 00", "hex(61 00)"},
};

INSTANTIATE_TEST_SUITE_P(Simple, FormIsSent, testing::ValuesIn(kSent));
INSTANTIATE_TEST_SUITE_P(Simple, FormIsRefused, testing::ValuesIn(kRefused));
INSTANTIATE_TEST_SUITE_P(Simple, FormIsShown, testing::ValuesIn(kShown));

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

const Raw kRaw[] = {
    {"hex(03 73 01)", "037301", true},
    {"hex(00)", "00", true},
    {"hex(01)", "01", true},
    {"hex(0106)", "0106", true},
    {"hex(0006)", "0006", true},
    {"hex(05 01 02)", "050102", true},
    {"hex(fF)", "FF", true},
    {"hex(02 06)", "0206", false},
    {"hex(04 06 00 00)", "04060000", false},
    {"base64(AnM=)", "0273", true},
};
INSTANTIATE_TEST_SUITE_P(Bytes, BinaryRequestRaw, testing::ValuesIn(kRaw));

class BinaryRequestRawRefuses : public testing::TestWithParam<std::string> {};

TEST_P(BinaryRequestRawRefuses, WhatIsNotBytes) {
    EXPECT_THAT(failureOf([] { BinaryRequest::raw(words(GetParam())); }),
                FailsWith(Failure::Kind::InvalidRequest, ""));
}

INSTANTIATE_TEST_SUITE_P(Arguments, BinaryRequestRawRefuses,
                         testing::Values("", "0273", "hex(02) hex(73)", "hex()", "hex(02", "hex(2)",
                                         "hex(xy)", "base64(A)"));

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
const std::string kRefusal("\x01\x01\0\0", 4);

TEST(BinaryRequestAnswers, AreToldByWhatTheyEcho) {
    const auto exec = BinaryRequest::encode("exec", {"command", "258", "ls"});
    EXPECT_TRUE(exec.isAnsweredBy(answerTo("c\x01\x01", kOk, "text")));
    EXPECT_TRUE(exec.isAnsweredBy(answerTo("c\x01\x01", kRefusal)));
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
    EXPECT_TRUE(status.isAnsweredBy(answerTo("s,\x01", kRefusal)));
    EXPECT_TRUE(status.isAnsweredBy(answerTo(std::string("s\0\0", 3), kRefusal)));
    EXPECT_FALSE(status.isAnsweredBy(answerTo("s,\x01", kOk)));
    EXPECT_FALSE(status.isAnsweredBy(answerTo("c,\x01", kRefusal)));
}

TEST(BinaryRequestAnswers, ShowARefusalAsTheAsciiFormDoes) {
    const auto request = BinaryRequest::encode("status", {});
    const Answer answer = request.answer(answerTo("s,\x01", kRefusal));
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
