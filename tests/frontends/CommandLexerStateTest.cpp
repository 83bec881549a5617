// What the scanner keeps from line to line, and that threads do not get into each other's way.
#include <atomic>
#include <thread>

#include "core/StringFormat.h"
#include "support/LexerFixture.h"
#include "support/Rows.h"

namespace {

class CommandLexerStateTest : public LexerFixture {};

} // namespace

TEST_F(CommandLexerStateTest, ALineWithoutEtxIsContinuedByTheNext) {
    const Rows<const char*, std::string, std::string, Tokens, std::string> rows = {
        {"waiting for the word", "\x02", "s a\x03", tokens({"s", "a"}), ""},
        {"waiting for the word, restarted", "\x02", request("t"), tokens({"t"}), ""},
        {"opened by a frame header", "x#<frame>1:", "s a\x03", tokens({"s", "a"}), ""},
        {"behind the word", "\x02s", "a\x03", tokens({"s", "a"}), ""},
        {"in the arguments", "\x02s a", "b, c\x03", tokens({"s", "a", "b", "c"}), ","},
        {"in the arguments, restarted", "\x02s a", request("t"), tokens({"t"}), ""},
        {"in a string", "\x02s \"a b", "c d\" e\x03", tokens({"s", "a b", "c d", "e"}), ""},
        {"in a string, restarted", "\x02s \"a b", request("t \"c\""), tokens({"t", "c"}), ""},
        {"in hex",
         "\x02s hex(01",
         "02) x\x03",
         {token("s"), decoded("\x01"), decoded("\x02"), token("x")},
         ""},
        {"in hex, with half a pair",
         "\x02s hex(0",
         "2)\x03",
         {token("s"), decoded(""), decoded("")},
         ""},
        {"in hex, restarted", "\x02s hex(01", request("t"), tokens({"t"}), ""},
        {"in base64",
         "\x02s base64(QUJD",
         "REVG)x\x03",
         {token("s"), decoded("ABC"), decoded("DEF"), token("x")},
         ""},
        {"in base64, restarted", "\x02s base64(QUJD", request("t"), tokens({"t"}), ""},
        {"ended by ETX", "\x02s a\x03", "b c", tokens({"s", "a"}), ""},
        {"ended by ETX inside a string", "\x02s \"a\x03", "b\" c\x03", tokens({"s", "a"}), ""},
        {"without any command", "a b", "c d\x03", tokens({"old"}), ""},
    };
    for (const auto& [what, first, second, expected, echo] : rows) {
        SCOPED_TRACE(what);
        startOver();
        scan(first);
        EXPECT_EQ(scan(second), (Scan{expected, echo}));
    }
}

TEST_F(CommandLexerStateTest, ALineWithoutACommandGivesTheTokensOfTheOneBefore) {
    EXPECT_EQ(scan(request("s a \"b c\"")).tokens, tokens({"s", "a", "b c"}));
    for (const std::string& line : {request(""), std::string(), std::string("noise\x03\n")}) {
        SCOPED_TRACE(::testing::PrintToString(line));
        EXPECT_EQ(scan(line).tokens, tokens({"s", "a", "b c"}));
    }
}

TEST_F(CommandLexerStateTest, WhereRunsAreOneByteLongALineMayBeSplitAnywhere) {
    const std::string line = "\x02s a \"b\" c 1 \"\" _ d\x03";
    for (std::size_t split = 0; split <= line.size(); ++split) {
        SCOPED_TRACE(split);
        startOver();
        scan(line.substr(0, split));
        EXPECT_EQ(scan(line.substr(split)), (Scan{tokens({"s", "a", "b", "c", "1", "_", "d"}), ""}));
    }
}

TEST_F(CommandLexerStateTest, ACommandStartsAfreshWhereverTheLineBeforeWasCut) {
    const std::string line =
        "x#<parameter>\x02#<frame>1A:\x02G test \"a b\" hex(01 02) base64(QUJD)\x03\n";
    for (std::size_t length = 0; length <= line.size(); ++length) {
        SCOPED_TRACE(length);
        startOver();
        scan(line.substr(0, length));
        EXPECT_EQ(scan(request("s \"c d\" hex(03)")),
                  (Scan{{token("s"), token("c d"), decoded("\x03")}, ""}));
    }
}

TEST_F(CommandLexerStateTest, EachThreadGetsTheTokensOfItsOwnLine) {
    constexpr int kThreads = 8;
    constexpr int kLines = 1000;
    std::atomic<int> mistakes{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([thread, &mistakes] {
            for (int number = 0; number < kLines; ++number) {
                const std::string own = std::to_string(thread) + "x" + std::to_string(number);
                const Tokens expected = {token("c" + own), token(own + " quoted"), token(own),
                                         decoded(std::string(1, static_cast<char>(thread)))};
                const std::string line = request(string_format(
                    "c%s \"%s quoted\" %s hex(0%d)", own.c_str(), own.c_str(), own.c_str(), thread));
                if (scanTokens(line) != expected)
                    ++mistakes;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mistakes, 0);
}

// It used to begin anew whenever another line had left a list of its own.
TEST_F(CommandLexerStateTest, ALongLineWithoutACommandComesToItsEndAmongOthersCommands) {
    std::atomic<bool> stop{false};
    std::atomic<long> scanned{0};
    std::thread other([&] {
        for (; !stop; ++scanned)
            scanTokens(request("other " + std::to_string(scanned)));
    });
    const std::string noise = std::string(std::size_t{8} << 20, 'n') + "\x03\n";
    const long before = scanned;
    while (scanned == before)
        std::this_thread::yield();
    const Tokens given = scanTokens(noise);
    stop = true;
    other.join();
    ASSERT_EQ(given.size(), 2U);
    EXPECT_EQ(given.front(), token("other"));
}

TEST_F(CommandLexerStateTest, TokensWithoutACommandComeBehindThoseOfTheOneBefore) {
    EXPECT_EQ(scan(request("s a")).tokens, tokens({"s", "a"}));
    const std::vector<char> parameter = token("#<parameter>\x02");
    EXPECT_EQ(scan("#<parameter>\x02s\x03\n").tokens, (Tokens{token("s"), token("a"), parameter}));
    EXPECT_EQ(scan("#<parameter>\x02s\x03\n").tokens,
              (Tokens{token("s"), token("a"), parameter, parameter}));
    EXPECT_EQ(scan(request("")).tokens, (Tokens{token("s"), token("a"), parameter, parameter}));
}
