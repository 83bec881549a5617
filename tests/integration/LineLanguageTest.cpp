#include <gtest/gtest.h>

#include <string>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"

namespace {

using namespace std::string_literals;

class LineLanguageTest : public DaemonTest {};

struct Echo {
    const char* name;
    std::string sent;
    const char* output; ///< what appears on the daemon's standard output
};

const Echo kEchoes[] = {
    {"noise before STX is silent", "noise .,-\x02one\x03\n", ""},
    {"text after ETX is silent", "\x02one\x03 .,-\x03\n", ""},
    {"blanks between arguments are silent", "\x02one  a   b\x03\n", ""},
    {"quoted text is silent", "\x02one \"-.,/:#(+=<>\"\x03\n", ""},
    {"before the name", "\x02 _-one\x03\n", " _-"},
    {"among arguments", "\x02one -3 1.5 a,b /:#(+=<>\t\x03\n", "-.,/:#(+=<>\t"},
    {"upper-case HEX( is a word", "\x02one HEX(01)\x03\n", "("},
    {"hexa( is a word", "\x02one hexa(01)\x03\n", "("},
    {"hex with a blank is a word", "\x02one hex (01)\x03\n", "("},
    {"inside hex", "\x02one hex(01-g02)\x03\n", "-g"},
    {"inside base64", "\x02one base64(QU-JD QQ)\x03\n", "- "},
    {"bytes beyond ASCII", "\x02one \xC3\xA4\x03\n", "\xC3\xA4"},
    {"per-cent signs", "\x02one %s%n%d \"%s%n\"\x03\n", "%%%"},
    {"a frame header", "#<frame>1A:one\x03\n", "len rame>1A:: 0\n"},
    {"a frame header without a number", "#<frame>:\x02one\x03\n", ""},
};

TEST_F(LineLanguageTest, EchoesWhatNoRuleTakes) {
    Connection station;
    std::string output;
    for (const Echo& row : kEchoes) {
        SCOPED_TRACE(row.name);
        expectExchange(station, row.sent, unknown("one"));
        output += row.output;
        EXPECT_TRUE(daemon.waitForOutput(output)) << daemon.output();
    }
    expectNothingMore(station);
}

std::string counted(int parameters) {
    return failure("exec", "Command execute was called with " + std::to_string(parameters) +
                               " parameters must have 4 parameters");
}

struct Line {
    const char* name;
    std::string sent;
    int parameters; ///< the daemon counts them, its command's name included
};

const Line kArguments[] = {
    {"no argument", "\2exec\x03\n"s, 1},
    {"a word of each kind", "\2exec a_1 \"b c\" hex(01 02) base64(QUJD)\x03\n"s, 5},
    {"blanks", "\2exec  a   b\x03\n"s, 3},
    {"a tab splits words", "\2exec a\tb\x03\n"s, 3},
    {"punctuation splits words", "\2exec 1.5\x03\n"s, 3},
    {"an empty string", "\2exec \"\"\x03\n"s, 1},
    {"a line feed in a string splits it", "\2exec \"a\nb\"\x03\n"s, 3},
    {"an unterminated string", "\2exec \"a b\x03\n"s, 2},
    {"empty hex", "\2exec hex()\x03\n"s, 1},
    {"hex of a blank", "\2exec hex( )\x03\n"s, 2},
    {"hex of one digit", "\2exec hex(1)\x03\n"s, 2},
    {"hex in two runs", "\2exec hex(01-02)\x03\n"s, 3},
    {"base64 in two runs", "\2exec base64(QUJD QUJD)\x03\n"s, 3},
    {"base64 too short to hold a byte", "\2exec base64(Q)\x03\n"s, 2},
    {"hex alone is a word", "\2exec hex base64\x03\n"s, 3},
    {"words joined to a string", "\2exec a\"b\"c\x03\n"s, 4},
};

TEST_F(LineLanguageTest, SplitsArguments) {
    Connection station;
    for (const Line& row : kArguments) {
        SCOPED_TRACE(row.name);
        // Four parameters are the right number; then the first argument is looked at.
        const std::string received = row.parameters == 4
                                         ? failure("exec", "Unsupported exec subcommand ")
                                         : counted(row.parameters);
        expectExchange(station, row.sent, received);
    }
    expectNothingMore(station);
}

// Each line goes on where the one before left the scanner; a NUL hides its ETX.
const Line kContinued[] = {
    {"among arguments", "\2exec a\0\x03\n"s, 2},
    {"goes on among arguments", " b\x03\n", 3},
    {"ETX has ended the command", " c\x03\n", 3},
    {"STX without a name", "\x02\x03\n", 3},
    {"inside a string", "\2exec \"a\0\x03\n"s, 2},
    {"goes on inside the string", "b\" c d\x03\n", 5},
    {"inside hex", "\2exec hex(01\0\x03\n"s, 2},
    {"goes on inside hex", "02) x y\x03\n", 5},
    {"inside base64", "\2exec base64(QUJD\0\x03\n"s, 2},
    {"goes on inside base64", "QUJD)\x03\n", 3},
    {"STX ends a string of the line before", "\2exec \"a\0\x03\n"s, 2},
    {"begins anew", "\2exec a\x03\n"s, 2},
    {"waits for a name", "\x02\0\x03\n"s, 2},
    {"the name comes", "exec a b\x03\n", 3},
    {"a frame header waits for a name", "#<frame>05:\0\x03\n"s, 3},
    {"the name comes", "exec\x03\n", 1},
    {"a parameter mark is one more entry", "#<parameter>\x02s\x03\n", 2},
    {"and one more", "#<parameter>\x02\x02s\x03\n", 3},
};

TEST_F(LineLanguageTest, GoesOnWhereTheLineBeforeEnded) {
    Connection one;
    Connection other;
    bool isOne = false;
    for (const Line& row : kContinued) {
        SCOPED_TRACE(row.name);
        isOne = !isOne;
        expectExchange(isOne ? one : other, row.sent, counted(row.parameters));
    }
    expectNothingMore(one);
    expectNothingMore(other);
}

TEST_F(LineLanguageTest, RepeatsTheLastCommandForALineWithoutAName) {
    writeFile(kSerialNumberFile, "0123");
    Connection one;
    Connection other;
    expectExchange(one, "\x02status 02\x03\n", "\x02#status base64(MDEyMw==)\x03\n");
    for (const std::string& line : {"\x03\n"s, "\x02\x03\n"s, "noise\x03\n"s, "\0noise\x03\n"s}) {
        SCOPED_TRACE(testing::PrintToString(line));
        expectExchange(other, line, "\x02#status base64(MDEyMw==)\x03\n");
    }
    expectExchange(other, "\x02one two\x03\n", unknown("one"));
    expectExchange(one, "\x03\n", unknown("one"));
    expectNothingMore(one);
    expectNothingMore(other);
}

TEST_F(LineLanguageTest, AParameterMarkCanBecomeTheName) {
    Connection station;
    expectExchange(station, "#<parameter>\x02s\x03\n", unknown("#<parameter>\x02"));
    // It stays the name until a command word empties the list, whatever comes behind it.
    expectExchange(station, "#<parameter>\x02\x02s\x03\n", unknown("#<parameter>\x02"));
    expectNothingMore(station);
}

TEST_F(LineLanguageTest, AParameterMarkTakesTheEndOfItsLineAlong) {
    Connection station;
    expectExchange(station, "#<parameter>\x03\n", unknown("#<parameter>\x03\n"));
    expectNothingMore(station);
}

} // namespace
