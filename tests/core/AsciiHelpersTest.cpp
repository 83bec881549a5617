// The text helpers that AbstractCmd offers to commands.
#include <gmock/gmock.h>

#include "core/AbstractCmd.h"
#include "support/Rows.h"
#include "support/ScriptedCommand.h"

using ::testing::ElementsAreArray;

namespace {

const AbstractCmd& command() {
    return ScriptedCommand::diag();
}

} // namespace

TEST(AsciiHelpersTest, TellsTheCommandsName) {
    EXPECT_EQ(command().ascii_getName(), "diag");
    EXPECT_EQ(ScriptedCommand::make('I', "").ascii_getName(), "");
}

TEST(AsciiHelpersTest, ReadsNumbersInTheirThreeNotations) {
    const Rows<const char*, int> rows = {
        {"0", 0},
        {"42", 42},
        {"+42", 42},
        {"-42", -42},
        {"0x10", 16},
        {"0XfF", 255},
        {"-0x10", -16},
        {"010", 8},
        {"08", 0},
        {" 7", 7},
        {" \t\n\v\f\r-0x7", -7},
        {"- 7", 0},
        {"+-7", 0},
        {"0x", 0},
        {"0xg", 0},
        {"0b101", 0},
        {"0B1", 0},
        {"-0b1", 0},
        {"7 8", 7},
        {"12ab", 12},
        {"2147483647", 2147483647},
        {"-2147483648", -2147483647 - 1},
        {"abc", 0},
        {"", 0},
        {"-", 0},
        {"%d", 0},
    };
    for (const auto& [text, value] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(command().ascii_getInt(token(text)), value);
    }
}

TEST(AsciiHelpersTest, ReadsNoNumberBeyondTheToken) {
    EXPECT_EQ(command().ascii_getInt({}), 0);
    EXPECT_EQ(command().ascii_getInt({'4', '2'}), 42) << "decoded tokens end without a zero byte";
    EXPECT_EQ(command().ascii_getInt({'4', '\0', '2'}), 4);
}

TEST(AsciiHelpersTest, TurnsHexadecimalTextIntoBytes) {
    const Rows<const char*, Bytes> rows = {
        {"", {}},
        {"1", {}},
        {"12", {0x12}},
        {"12 ab-C", {0x12, 0xAB}},
        {"1 2", {0x12}},
        {"00:fF:7f:Ff", {0x00, 0xFF, 0x7F, 0xFF}},
        {"ABCDEF", {0xAB, 0xCD, 0xEF}},
        {"abcdef", {0xAB, 0xCD, 0xEF}},
        {"0123456789", {0x01, 0x23, 0x45, 0x67, 0x89}},
        {"xyz gh @`/: \t\n", {}},
        {"123", {0x12}},
        {"\xB1\xB2", {}},
    };
    for (const auto& [text, bytes] : rows) {
        SCOPED_TRACE(text);
        EXPECT_THAT(command().ascii_buildHexVector(text), ElementsAreArray(bytes));
    }
}

TEST(AsciiHelpersTest, AWrapperLeftOnHexadecimalTextIsReadAsADigit) {
    EXPECT_THAT(command().ascii_buildHexVector("hex(12)"), ElementsAreArray({0xE1}));
}

TEST(AsciiHelpersTest, TurnsBytesIntoHexadecimalText) {
    const Rows<Bytes, const char*, const char*> rows = {
        {{}, "", "hex()"},
        {{0x00}, "00", "hex(00)"},
        {{0x01, 0xAB, 0xFF}, "01ABFF", "hex(01ABFF)"},
        {{0x0A, 0xA0}, "0AA0", "hex(0AA0)"},
    };
    for (const auto& [bytes, bare, wrapped] : rows) {
        SCOPED_TRACE(wrapped);
        EXPECT_EQ(command().ascii_buildHexString(bytes, false), bare);
        EXPECT_EQ(command().ascii_buildHexString(bytes, true), wrapped);
    }
}

TEST(AsciiHelpersTest, TurnsBytesIntoBase64Text) {
    const Rows<Bytes, const char*> rows = {
        {Bytes{}, "base64()"},
        {{'A'}, "base64(QQ==)"},
        {{'A', 'B'}, "base64(QUI=)"},
        {{'A', 'B', 'C'}, "base64(QUJD)"},
        {{'A', 'B', 'C', 'D'}, "base64(QUJDRA==)"},
        {{0xFB, 0xFF, 0xBF}, "base64(+/+/)"},
    };
    for (const auto& [bytes, text] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(command().ascii_buildBase64String(bytes), text);
        EXPECT_EQ(command().ascii_buildBase64String(bytes, static_cast<unsigned>(bytes.size())), text);
    }
    EXPECT_EQ(command().ascii_buildBase64String(Bytes(30000, 0)),
              "base64(" + std::string(40000, 'A') + ")");
}

TEST(AsciiHelpersTest, TurnsTheFirstBytesIntoBase64Text) {
    const Bytes bytes = {'A', 'B', 'C', 'D'};
    EXPECT_EQ(command().ascii_buildBase64String(bytes, 0), "base64()");
    EXPECT_EQ(command().ascii_buildBase64String(bytes, 1), "base64(QQ==)");
    EXPECT_EQ(command().ascii_buildBase64String(bytes, 3), "base64(QUJD)");
    EXPECT_EQ(command().ascii_buildBase64String(bytes, 1000), "base64(QUJDRA==)")
        << "there are only four";
}
