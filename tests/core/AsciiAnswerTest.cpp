// What AbstractCmd makes of a response in the ASCII protocol.
#include "core/AbstractCmd.h"
#include "core/ProcessResponseAscii.h"
#include "support/AnswerFixture.h"
#include "support/Rows.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class AsciiAnswerTest : public AnswerFixture {
protected:
    ~AsciiAnswerTest() override { EXPECT_THAT(m_listener.frames, IsEmpty()); }
};

} // namespace

TEST_F(AsciiAnswerTest, SuccessIsTheNameAndOk) {
    EXPECT_EQ(command().ascii_exec(new ProcessResponse(0)), "diag ok");
    EXPECT_EQ(command().ascii_exec(new ProcessResponse(0, "not sent")), "diag ok");
    EXPECT_EQ(command().ascii_exec(new ProcessResponseTavrin(0, "not sent")), "diag ok");
    EXPECT_EQ(command().ascii_exec(new ProcessResponseAscii(0, "not sent")), "diag ok");
    EXPECT_THAT(m_listener.lines, IsEmpty());
}

TEST_F(AsciiAnswerTest, SuccessCarriesTheAnswerText) {
    auto* response = new ProcessResponseAscii(0, "");
    response->answer = "cksum base64(QUJD) 100%s";
    EXPECT_EQ(command().ascii_exec(response), "diag cksum base64(QUJD) 100%s");
    auto* empty = new ProcessResponseAscii(0, "");
    empty->answer.clear();
    EXPECT_EQ(command().ascii_exec(empty), "diag ");
}

TEST_F(AsciiAnswerTest, CodeOneAnswersNothingAndStaysTheCallers) {
    const unsigned int before = ProcessResponse::m_counter;
    ProcessResponse plain(1, "not sent");
    ProcessResponseAscii ascii(1, "not sent");
    EXPECT_EQ(command().ascii_exec(&plain), "");
    EXPECT_EQ(command().ascii_exec(&ascii), "");
    EXPECT_THAT(m_listener.lines, IsEmpty());
    EXPECT_EQ(ProcessResponse::m_counter, before + 2);
}

TEST_F(AsciiAnswerTest, AnErrorIsItsTextAheadAndItsCode) {
    const Rows<unsigned int, const char*> rows = {
        {0x2, "diag Error 0x2"},
        {0x10, "diag Error 0x10"},
        {0x123, "diag Error 0x123"},
        {0x01010000, "diag Error 0x1010000"},
        {0xABCDEF01, "diag Error 0xABCDEF01"},
        {0xFFFFFFFF, "diag Error 0xFFFFFFFF"},
    };
    for (const auto& [code, answer] : rows) {
        SCOPED_TRACE(answer);
        m_listener.lines.clear();
        EXPECT_EQ(command().ascii_exec(new ProcessResponse(code, "what %d", 7)), answer);
        EXPECT_EQ(command().ascii_exec(new ProcessResponseAscii(code, "what %d", 7)), answer);
        EXPECT_EQ(command().ascii_exec(new ProcessResponseTavrin(code, "what %d", 7)), answer);
        const std::string info = "Info \"what 7\"";
        EXPECT_THAT(m_listener.lines, ElementsAre(info, info, info));
    }
}

TEST_F(AsciiAnswerTest, TheTextOfAnErrorIsNeverAFormatAndNeverCut) {
    const Rows<std::string, std::string> rows = {
        {"", "Info \"\""},
        {"%n%s%x", "Info \"%n%s%x\""},
        {"say \"no\"", "Info \"say \"no\"\""},
        {std::string(5000, 'x'), "Info \"" + std::string(5000, 'x') + "\""},
    };
    for (const auto& [message, info] : rows) {
        SCOPED_TRACE(info.substr(0, 40));
        m_listener.lines.clear();
        EXPECT_EQ(command().ascii_exec(new ProcessResponse(2, "%s", message.c_str())), "diag Error 0x2");
        EXPECT_THAT(m_listener.lines, ElementsAre(info));
    }
}

TEST_F(AsciiAnswerTest, WithoutAListenerTheAnswerIsTheSame) {
    command().setListener(nullptr);
    EXPECT_EQ(command().ascii_exec(new ProcessResponse(2, "abc")), "diag Error 0x2");
}

TEST_F(AsciiAnswerTest, ResponsesAreTakenOver) {
    const unsigned int before = ProcessResponse::m_counter;
    command().ascii_exec(new ProcessResponse(0));
    command().ascii_exec(new ProcessResponse(2, "abc"));
    command().ascii_exec(new ProcessResponseAscii(0, ""));
    command().ascii_exec(new ProcessResponseTavrin(2, ""));
    EXPECT_EQ(ProcessResponse::m_counter, before);
}
