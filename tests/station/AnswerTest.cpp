#include "client/Answer.h"

#include <gtest/gtest.h>

#include <utility>

#include "FailureKind.h"

namespace station {
namespace {

using testing::Values;

/// A line, and the text in it when it is one of its kind.
struct SaidLine {
    std::optional<std::string> (*read)(std::string_view line);
    std::string line;
    std::optional<std::string> text;

    friend void PrintTo(const SaidLine& row, std::ostream* out) {
        *out << testing::PrintToString(row.line);
    }
};

class AnswerSays : public testing::TestWithParam<SaidLine> {};

TEST_P(AnswerSays, Text) {
    EXPECT_EQ(GetParam().read(GetParam().line), GetParam().text);
}

const SaidLine kSaid[] = {
    {infoMessage, "Info \"text\"", "text"},
    {infoMessage, "Info \"\"", ""},
    {infoMessage, "Info \"two\nlines\n\"", "two\nlines\n"},
    {infoMessage, "Info \"a \"quoted\" word\"", "a \"quoted\" word"},
    {infoMessage, "Info \"\"\"", "\""},
    {infoMessage, "Info \"", std::nullopt},
    {infoMessage, "Info \"open", std::nullopt},
    {infoMessage, "Info text\"", std::nullopt},
    {infoMessage, "info \"text\"", std::nullopt},
    {infoMessage, "", std::nullopt},
    {infoMessage, "status \"text\"", std::nullopt},
    {greeting, "Info Production Test Server (Build 2026/11/21 09:03:24)",
     "Production Test Server (Build 2026/11/21 09:03:24)"},
    {greeting, "Info ", ""},
    {greeting, "Info", std::nullopt},
    {greeting, "Info \"text\"", std::nullopt},
    {greeting, "Info text\"", std::nullopt},
    {greeting, "status ok", std::nullopt},
    {greeting, "", std::nullopt},
};

INSTANTIATE_TEST_SUITE_P(Line, AnswerSays, testing::ValuesIn(kSaid));

struct FinalLine {
    std::string name;
    std::string line;
    std::string text;
    std::uint32_t code;

    friend void PrintTo(const FinalLine& row, std::ostream* out) {
        *out << testing::PrintToString(std::pair(row.name, row.line));
    }
};

class AnswerFinal : public testing::TestWithParam<FinalLine> {};

TEST_P(AnswerFinal, Line) {
    const Answer answer = parseAnswer(GetParam().name, GetParam().line);
    EXPECT_EQ(answer.text, GetParam().text);
    EXPECT_EQ(answer.code, GetParam().code);
    EXPECT_EQ(answer.isRefusal(), GetParam().code != 0);
}

INSTANTIATE_TEST_SUITE_P(
    Success, AnswerFinal,
    Values(FinalLine{"status", "status \"2026/11/21 08:37:25\" A024 \"1A\" 4",
                     "\"2026/11/21 08:37:25\" A024 \"1A\" 4", 0},
           FinalLine{"audio", "audio ok", "ok", 0}, FinalLine{"ack", "", "", 0},
           FinalLine{"exec", "exec ", "", 0}, FinalLine{"exec", "exec  two blanks ", " two blanks ", 0},
           FinalLine{"status", "status base64(QUJD\nQUJD\n)", "base64(QUJD\nQUJD\n)", 0},
           FinalLine{"exec", "exec Error", "Error", 0},
           FinalLine{"exec", "exec Error 16", "Error 16", 0},
           FinalLine{"exec", "exec \xFF\xFE", "\xFF\xFE", 0}));

INSTANTIATE_TEST_SUITE_P(Refusal, AnswerFinal,
                         Values(FinalLine{"diag", "diag Error 0x1010000", "Error 0x1010000", 0x1010000},
                                FinalLine{"diag", "diag Error 0xFFFFFFFF", "Error 0xFFFFFFFF",
                                          0xFFFFFFFF},
                                FinalLine{"port", "port Error 0x1", "Error 0x1", 1},
                                FinalLine{"nosuch", "Error Error 0x10", "Error 0x10", 0x10},
                                FinalLine{"Error", "Error Error 0x10", "Error 0x10", 0x10}));

struct WrongLine {
    std::string name;
    std::string line;
    std::string message;

    friend void PrintTo(const WrongLine& row, std::ostream* out) {
        *out << testing::PrintToString(row.line);
    }
};

class AnswerWrong : public testing::TestWithParam<WrongLine> {};

TEST_P(AnswerWrong, LineIsRefused) {
    EXPECT_THAT(failureOf([] { parseAnswer(GetParam().name, GetParam().line); }),
                FailsWith(Failure::Kind::MalformedAnswer, GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Line, AnswerWrong,
    Values(WrongLine{"status", "status", "a line without an answer: status"},
           WrongLine{"status", "audio ok", "expected one to 'status': audio ok"},
           WrongLine{"status", "Status ok", "expected one to 'status'"},
           WrongLine{"status", "statusx ok", "expected one to 'status'"},
           WrongLine{"status", " ok", "expected one to 'status'"},
           WrongLine{"status", "audio Error 0x10", "expected one to 'status'"},
           WrongLine{"status", "Error ok", "expected one to 'status'"},
           WrongLine{"status", "Info \"open", "expected one to 'status'"},
           WrongLine{"status", "status Error 0x", "an error code that is none"},
           WrongLine{"status", "status Error 0x0", "an error code that is none"},
           WrongLine{"status", "status Error 0x010", "an error code that is none"},
           WrongLine{"status", "status Error 0x1f", "an error code that is none"},
           WrongLine{"status", "status Error 0x10 ", "an error code that is none"},
           WrongLine{"status", "status Error 0x100000000", "an error code that is none"},
           WrongLine{"status", "x " + std::string(100, 'y'), std::string(78, 'y') + "..."}));

} // namespace
} // namespace station
