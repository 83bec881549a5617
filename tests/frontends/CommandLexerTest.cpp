// The language of command lines, one row per statement about it.
#include "frontends/CommandLexer.h"

#include "frontends/serial_lexer.h"
#include "support/LexerFixture.h"

using ::testing::ElementsAre;

struct yy_buffer_state;
yy_buffer_state* yy_scan_string(const char* text);
void yy_switch_to_buffer(yy_buffer_state* buffer);
void yy_delete_buffer(yy_buffer_state* buffer);
int yylex();

namespace {

struct Row {
    const char* what;
    std::string line;
    Tokens tokens;
    std::string echo{};
};

class CommandLexerTest : public LexerFixture {
protected:
    template <std::size_t count>
    static void expectAll(const Row (&rows)[count]) {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.what);
            startOver();
            EXPECT_EQ(scan(row.line), (Scan{row.tokens, row.echo}));
        }
    }
};

const Tokens kOld = tokens({"old"});

} // namespace

TEST_F(CommandLexerTest, ACommandIsStxWordArgumentsEtx) {
    const Row rows[] = {
        {"a word", request("s"), {{'s', '\0'}}},
        {"a word without newline", "\x02s\x03", tokens({"s"})},
        {"a word with digits", request("S1x9"), tokens({"S1x9"})},
        {"a word of digits", request("42"), tokens({"42"})},
        {"arguments", request("port 1 2_3 _"), tokens({"port", "1", "2_3", "_"})},
        {"all forms of arguments",
         request("G test \"a b\" hex(0102) base64(QUJD)"),
         {token("G"), token("test"), token("a b"), decoded("\x01\x02"), decoded("ABC")}},
        {"noise before it", "noise \"hex(01) )#<\t" + request("s"), tokens({"s"})},
        {"noise of any byte", "\x01\x7F\x80\xFF" + request("s"), tokens({"s"})},
        {"another command behind it", request("s") + request("t"), tokens({"s"})},
        {"text behind it", request("s") + "rest", tokens({"s"})},
        {"newlines everywhere", "\n\x02\ns\na\n\nb\n\x03\n", tokens({"s", "a", "b"})},
        {"a second STX", request("s a\x02t b"), tokens({"t", "b"})},
        {"two STX in a row", request("\x02\x02t"), tokens({"t"})},
        {"a long word", request(std::string(100000, 'w')), tokens({std::string(100000, 'w')})},
    };
    expectAll(rows);
}

TEST_F(CommandLexerTest, WithoutACommandWordTheListStays) {
    const Row rows[] = {
        {"an empty line", "", kOld},
        {"a newline", "\n", kOld},
        {"no STX", "s a b\x03\n", kOld},
        {"an ETX", "\x03\n", kOld},
        {"an empty command", request(""), kOld},
        {"a command of blanks", request("  "), kOld, "  "},
        {"a command of signs", request("_-/\"()"), kOld, "_-/\"()"},
    };
    expectAll(rows);
}

TEST_F(CommandLexerTest, WhatIsNoLetterOrDigitBeforeTheWordIsEchoed) {
    const Row rows[] = {
        {"a blank", request(" s"), tokens({"s"}), " "},
        {"signs", request("_./s"), tokens({"s"}), "_./"},
        {"a quoted word", request("\"s\""), {token("s")}, "\""},
        {"bytes above 0x7F", request("\xC3\xA4s"), tokens({"s"}), "\xC3\xA4"},
        {"an underscore behind the word", request("s_1 a"), tokens({"s", "_1", "a"})},
    };
    expectAll(rows);
}

TEST_F(CommandLexerTest, OnlyTheBlankSeparatesArgumentsSilently) {
    const Row rows[] = {
        {"two blanks", request("s  a   b "), tokens({"s", "a", "b"})},
        {"a tab", request("s a\tb"), tokens({"s", "a", "b"}), "\t"},
        {"a fraction", request("s 1.5"), tokens({"s", "1", "5"}), "."},
        {"a negative number", request("s -3"), tokens({"s", "3"}), "-"},
        {"a path", request("s /dev/nvsku/rev"), tokens({"s", "dev", "nvsku", "rev"}), "///"},
        {"carriage return", request("s a\r"), tokens({"s", "a"}), "\r"},
        {"every other sign", request("s !#$%&'(*+,-./:;<=>?@[\\]^`{|}~"), tokens({"s"}),
         "!#$%&'(*+,-./:;<=>?@[\\]^`{|}~"},
        {"each of them splits a word", request("s a,b:c=d"), tokens({"s", "a", "b", "c", "d"}), ",:="},
        {"a closing parenthesis splits in silence", request("s a)b"), tokens({"s", "a", "b"})},
        {"control bytes", request("s a\x01\x1F\x7Fz"), tokens({"s", "a", "z"}), "\x01\x1F\x7F"},
        {"bytes above 0x7F", request("s a\x80\xFFz"), tokens({"s", "a", "z"}), "\x80\xFF"},
        {"a per-cent conversion", request("s %n%s"), tokens({"s", "n", "s"}), "%%"},
    };
    expectAll(rows);
}

TEST_F(CommandLexerTest, AQuotedStringIsOneArgumentPerLine) {
    const Row rows[] = {
        {"blanks and signs", request("s \"/dev/x -1.5 (a)#:\t\""), tokens({"s", "/dev/x -1.5 (a)#:\t"})},
        {"empty", request("s \"\" x"), tokens({"s", "x"})},
        {"a newline inside", request("s \"a\nb\""), tokens({"s", "a", "b"})},
        {"only a newline inside", request("s \"\n\""), tokens({"s"})},
        {"unterminated", request("s \"a b"), tokens({"s", "a b"})},
        {"an STX inside", request("s \"a\x02t\" b"), {token("t"), token(" b")}},
        {"directly behind a word", request("s a\"b\"c"), tokens({"s", "a", "b", "c"})},
        {"two in a row", request("s \"a\"\"b\""), tokens({"s", "a", "b"})},
        {"hex inside", request("s \"hex(01)\""), tokens({"s", "hex(01)"})},
        {"bytes above 0x7F", request("s \"\xC3\xA4\""), tokens({"s", "\xC3\xA4"})},
        {"a long one", request("s \"" + std::string(100000, '-') + "\""),
         tokens({"s", std::string(100000, '-')})},
    };
    expectAll(rows);
}

TEST_F(CommandLexerTest, HexIsOneArgumentPerRun) {
    const std::string long2048(2048, 'a');
    const Row rows[] = {
        {"pairs with blanks", request("s hex(01 02 0a)"), {token("s"), decoded("\x01\x02\x0A")}},
        {"both cases", request("s hex(aBCdeF)"), {token("s"), decoded("\xAB\xCD\xEF")}},
        {"a tab between", request("s hex(1\t2)"), {token("s"), decoded("\x12")}},
        {"blanks do not disturb a pair", request("s hex(1 2)"), {token("s"), decoded("\x12")}},
        {"an unpaired digit", request("s hex(123)"), {token("s"), decoded("\x12")}},
        {"a single digit", request("s hex(1)"), {token("s"), decoded("")}},
        {"nothing", request("s hex() x"), tokens({"s", "x"})},
        {"a blank", request("s hex( )"), {token("s"), decoded("")}},
        {"a sign splits", request("s hex(01-02)"), {token("s"), decoded("\x01"), decoded("\x02")}, "-"},
        {"a newline splits", request("s hex(01\n02)"), {token("s"), decoded("\x01"), decoded("\x02")}},
        {"no digits", request("s hex(gh)"), tokens({"s"}), "gh"},
        {"a quote", request("s hex(01\")"), {token("s"), decoded("\x01")}, "\""},
        {"unterminated", request("s hex(01"), {token("s"), decoded("\x01")}},
        {"nested",
         request("s hex(01 hex(02)"),
         {token("s"), decoded("\x01"), decoded(""), decoded("\x02")},
         "hx("},
        {"directly behind a word's blank and before a word",
         request("s hex(01)a"),
         {token("s"), decoded("\x01"), token("a")}},
        {"zero bytes", request("s hex(000000)"), {token("s"), {'\0', '\0', '\0'}}},
        {"2048 digits",
         request("s hex(" + long2048 + ")"),
         {token("s"), std::vector<char>(1024, '\xAA')}},
        {"digits beyond the 2048th character",
         request("s hex(" + long2048 + "bb)"),
         {token("s"), std::vector<char>(1024, '\xAA')}},
        {"blanks are counted",
         request("s hex(  " + long2048 + ")"),
         {token("s"), std::vector<char>(1023, '\xAA')}},
    };
    expectAll(rows);
}

TEST_F(CommandLexerTest, Base64IsOneArgumentPerRun) {
    const Row rows[] = {
        {"three bytes", request("s base64(QUJD)"), {token("s"), decoded("ABC")}},
        {"six bytes", request("s base64(QUJDREVG)"), {token("s"), decoded("ABCDEF")}},
        {"the last letters", request("s base64(+/+/)"), {token("s"), decoded("\xFB\xFF\xBF")}},
        {"padding becomes zeros", request("s base64(QQ==)"), {token("s"), {'A', '\0', '\0'}}},
        {"padding after six",
         request("s base64(QUJDREU=)"),
         {token("s"), {'A', 'B', 'C', 'D', 'E', '\0'}}},
        {"nothing", request("s base64() x"), tokens({"s", "x"})},
        {"fewer than four", request("s base64(QUJ)"), {token("s"), decoded("")}},
        {"five", request("s base64(QUJDR)"), {token("s"), decoded("ABC")}},
        {"a blank splits",
         request("s base64(QUJD REVG)"),
         {token("s"), decoded("ABC"), decoded("DEF")},
         " "},
        {"a newline splits",
         request("s base64(QUJD\nREVG)"),
         {token("s"), decoded("ABC"), decoded("DEF")}},
        {"only padding", request("s base64(====)"), {token("s"), {'\0', '\0', '\0'}}},
        {"padding too early",
         request("s base64(QUJDQ===)"),
         {token("s"), {'A', 'B', 'C', '\x40', '\0', '\0'}}},
        {"foreign signs", request("s base64(!?)"), tokens({"s"}), "!?"},
        {"several",
         request("s base64(QUJD)base64(REVG) x base64(QQ==) \"base64(QUJD)\""),
         {token("s"),
          decoded("ABC"),
          decoded("DEF"),
          token("x"),
          {'A', '\0', '\0'},
          token("base64(QUJD)")}},
        {"ended by ETX",
         request("s base64(QUJD\x03"
                 "REVG)"),
         {token("s"), decoded("ABC")}},
        {"begun anew", request("s base64(QUJD\x02t x"), tokens({"t", "x"})},
        {"unterminated", request("s base64(QUJD"), {token("s"), decoded("ABC")}},
    };
    expectAll(rows);
}

TEST_F(CommandLexerTest, TheOpenersAreLowerCaseAndTouchTheirParenthesis) {
    const Row rows[] = {
        {"hex alone", request("s hex"), tokens({"s", "hex"})},
        {"hex in upper case", request("s HEX(01)"), tokens({"s", "HEX", "01"}), "("},
        {"hexa", request("s hexa(01)"), tokens({"s", "hexa", "01"}), "("},
        {"xhex", request("s xhex(01)"), tokens({"s", "xhex", "01"}), "("},
        {"a blank before the parenthesis", request("s hex (01)"), tokens({"s", "hex", "01"}), "("},
        {"base64 alone", request("s base64"), tokens({"s", "base64"})},
        {"base64 in upper case", request("s BASE64(QUJD)"), tokens({"s", "BASE64", "QUJD"}), "("},
        {"base64x", request("s base64x(QUJD)"), tokens({"s", "base64x", "QUJD"}), "("},
        {"as the command word", request("hex(01)"), tokens({"hex", "01"}), "("},
    };
    expectAll(rows);
}

TEST_F(CommandLexerTest, AParameterHeaderSwallowsTheControlBytesBehindIt) {
    const std::string header = "#<parameter>";
    const Row rows[] = {
        {"STX", header + "\x02s\x03", {token("old"), token(header + "\x02")}},
        {"ETX", header + "\x03\x02s\x03", {token("old"), token(header + "\x03\x02")}},
        {"all of them", header + "\x02\x03\n\n\x03", {token("old"), token(header + "\x02\x03\n\n\x03")}},
        {"newline, then a command", header + "\nx" + request("s"), tokens({"s"})},
        {"none", header + "x\x03", kOld},
        {"nothing at all", header, kOld},
        {"inside a command", request("s " + header), tokens({"s", "parameter"}), "#<>"},
    };
    expectAll(rows);
}

TEST_F(CommandLexerTest, AFrameHeaderWithALengthOpensACommand) {
    const Row rows[] = {
        {"like STX", "#<frame>1A:status 01\x03\n", tokens({"status", "01"}), "len rame>1A:: 0\n"},
        {"with noise before it", "noise#<frame>0:s\x03", tokens({"s"}), "len rame>0:: 0\n"},
        {"the length delimits nothing", "#<frame>0001:s 123456\x03", tokens({"s", "123456"}),
         "len rame>0001:: 0\n"},
        {"any number of digits", "#<frame>deadBEEF0123456789:s\x03", tokens({"s"}),
         "len rame>deadBEEF0123456789:: 0\n"},
        {"a blank before the word", "#<frame>1A: s\x03", tokens({"s"}), "len rame>1A:: 0\n "},
        {"without digits", "#<frame>:s\x03", kOld},
        {"without colon", "#<frame>1As\x03", kOld},
        {"with a foreign digit", "#<frame>1G:s\x03", kOld},
        {"it swallows one STX", "#<frame>\x02s\x03", kOld},
        {"it swallows one ETX", "#<frame>\x03" + request("s"), tokens({"s"})},
        {"before a newline it is noise", "#<frame>\n" + request("s"), tokens({"s"})},
        {"at the end", "#<frame>", kOld},
        {"inside a command", request("s #<frame>1A:t"), tokens({"s", "frame", "1A", "t"}), "#<>:"},
    };
    expectAll(rows);
}

TEST_F(CommandLexerTest, ALineEndsAtItsFirstZeroByte) {
    EXPECT_EQ(scan(std::string("\x02s a\0b\x03", 7)), (Scan{tokens({"s", "a"}), ""}));
}

TEST(LineScanTest, TheListIsFilledByItsThreeRoutines) {
    char digits[] = "12 aB-c";
    char text[] = "QUJDQQ==";
    LineScan scan;
    EXPECT_FALSE(scan.isNewList);
    scan.addToList("");
    scan.addToList("word");
    scan.addHexToList(digits);
    scan.addBase64ToList(text);
    scan.printList();
    EXPECT_THAT(scan.mylist, ElementsAre(token(""), token("word"), decoded("\x12\xAB"),
                                         std::vector<char>{'A', 'B', 'C', 'A', '\0', '\0'}));
    EXPECT_FALSE(scan.isNewList);
    scan.clearList();
    EXPECT_TRUE(scan.isNewList);
    EXPECT_TRUE(scan.mylist.empty());
}
