#include "commands/cReadCmd.h"
#include "support/UnitFixture.h"
#include "wire/Base64.h"

namespace {

std::string base64Of(const std::string& text) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    return "base64(" + System::encodeBase64(bytes, text.size()) + ")";
}

class cReadCmdAsciiTest : public CommandTest<cReadCmd, UnitFixture> {
protected:
    static Response execute(const std::string& text, const std::string& limit = "30") {
        return run(Words{"exec", "command", limit, text});
    }
    static void expectOutput(const std::string& text, const std::string& answer,
                             const std::string& limit = "30") {
        expectResponse(Words{"exec", "command", limit, text}, answer);
    }
};

} // namespace

TEST_F(cReadCmdAsciiTest, AnswersWhatTheCommandWrote) {
    const Rows<const char*, const char*> rows = {
        {"echo hello", "base64(aGVsbG8K)"},
        {"printf A", "base64(QQ==)"},
        {"printf A; exit 1", "base64(QQ==)"},
        {"printf A; printf BC >&2", "base64(QUJD)"},
        {"printf A\nprintf B\n\tprintf C", "base64(QUJD)"},
        {"printf '\xC3\xA4'", "base64(w6Q=)"},
        {"true", "base64()"},
        {"", "base64()"},
    };
    for (const auto& [text, answer] : rows)
        expectOutput(text, answer);
}

TEST_F(cReadCmdAsciiTest, AnswersTheWholeOutput) {
    expectOutput("printf %0247d 7", base64Of(std::string(246, '0') + "7"));
    const std::string expected = base64Of(std::string(3000000, '\0'));
    EXPECT_TRUE(answerOf(*execute("head -c 3000000 /dev/zero")) == expected);
}

TEST_F(cReadCmdAsciiTest, ReadsATextOfAnyLength) {
    const std::string comment = "# " + std::string(1000000, 'x') + "\n";
    expectOutput(comment + "printf A", "base64(QQ==)");
    expectOutput("printf A; exit\n" + comment, "base64(QQ==)");
}

TEST_F(cReadCmdAsciiTest, TakesExactlyFourTokens) {
    const auto text = [](const char* count) {
        return string_format("Command execute was called with %s parameters must have 4 parameters",
                             count);
    };
    expectRefused(RefusedLines{
        {{}, kGenericError, text("0")},
        {{"exec"}, kGenericError, text("1")},
        {{"exec", "command", "3"}, kGenericError, text("3")},
        {{"exec", "command", "3", "ls", "x"}, kGenericError, text("5")},
        {{"exec", "wrong", "3"}, kGenericError, text("3")},
    });
}

TEST_F(cReadCmdAsciiTest, TheSubCommandBeginsWithCommand) {
    for (const char* word : {"command", "commandfoo", "command ", "commandcommand"})
        expectResponse(Words{"exec", word, "3", "printf A"}, "base64(QQ==)");
    for (const char* word : {"", "comman", "Command", "COMMAND", "xcommand", "1"}) {
        expectRefused(Words{"exec", word, "3", "touch /tmp/ran"}, kGenericError,
                      "Unsupported exec subcommand ");
        EXPECT_FALSE(exists("/tmp/ran"));
    }
}

TEST_F(cReadCmdAsciiTest, TokensOfDecodedDataHaveNoZeroByte) {
    const std::vector<char> word = {'c', 'o', 'm', 'm', 'a', 'n', 'd'};
    const std::vector<char> text = {'e', 'c', 'h', 'o', ' ', 'x'};
    expectResponse(Tokens{token("exec"), word, {'9'}, text}, base64Of("x\n"));
    expectRefused({token("exec"), {'c'}, {'9'}, text}, kGenericError, "Unsupported exec subcommand ");
    expectResponse(Tokens{token("exec"), word, {'9'}, {}}, "base64()");
    expectRefused({token("exec"), {}, {'9'}, text}, kGenericError, "Unsupported exec subcommand ");
}

TEST_F(cReadCmdAsciiTest, TheTextEndsAtItsFirstZeroByte) {
    const std::string text("printf A\0printf B", 17);
    expectOutput(text, "base64(QQ==)");
}

TEST_F(cReadCmdAsciiTest, TheLimitIsAnyNumberOfSeconds) {
    for (const char* limit : {"1", "0x1", "01", "+1"}) {
        SCOPED_TRACE(limit);
        expectError(execute("sleep 1000 # %n%s", limit), kGenericError,
                    "Process sleep 1000 # %n%s was killed after timeout\nstdout+err:\n\n");
    }
}

TEST_F(cReadCmdAsciiTest, ANegativeLimitIsPracticallyEndless) {
    for (const char* limit : {"-1", "-2147483648"})
        expectOutput("printf A", "base64(QQ==)", limit);
}

TEST_F(cReadCmdAsciiTest, WithoutALimitTheDefaultIsEnoughForAQuickCommand) {
    for (const char* limit : {"0", "", "abc"})
        expectOutput("printf A", "base64(QQ==)", limit);
}
