#include <new>
#include <vector>

#include "support/Allocations.h"
#include "support/LexerFixture.h"

namespace {

class CommandLexerMemoryTest : public LexerFixture {};

const std::string kLine =
    request("s word \"a string\" hex(01 02 03) base64(QUJDREVG) 1 2 3 4 5 6 7 8 9");
const Tokens kTokens = {token("s"),        token("word"), token("a string"), decoded("\x01\x02\x03"),
                        decoded("ABCDEF"), token("1"),    token("2"),        token("3"),
                        token("4"),        token("5"),    token("6"),        token("7"),
                        token("8"),        token("9")};

/// Scans with memory for `allocations` blocks. True when that was enough.
bool scanWithMemoryFor(int allocations, Allocations& memory) {
    LineAssembler assembler;
    assembler.append(kLine.data(), kLine.size());
    memory.failAfter(allocations);
    bool enough = false;
    try {
        enough = CommandLexer::scan(assembler) == kTokens;
    } catch (const std::bad_alloc&) {
    }
    memory.failNever();
    return enough;
}

constexpr int kMoreThanItTakes = 1000;

} // namespace

TEST_F(CommandLexerMemoryTest, WheneverMemoryRunsOutTheScannerIsAsNewAfterwards) {
    Allocations memory;
    int failures = 0;
    while (failures < kMoreThanItTakes) {
        SCOPED_TRACE(failures);
        scan("\x02old \"left open"); // neither this state nor these tokens may survive
        if (scanWithMemoryFor(failures, memory))
            break;
        EXPECT_EQ(scan("noise\" hex(01)\x03"), (Scan{{}, ""}));
        EXPECT_EQ(scan(kLine).tokens, kTokens);
        ++failures;
    }
    // The list and each of its entries, the same for the copy, and what the scanner itself needs.
    EXPECT_GT(failures, 2 * static_cast<int>(kTokens.size()));
    EXPECT_LT(failures, kMoreThanItTakes);
}

TEST_F(CommandLexerMemoryTest, NothingIsLostWhenMemoryRunsOut) {
    Allocations memory;
    std::vector<long> live; // what was still in use after each failure and a good scan
    live.reserve(kMoreThanItTakes);
    for (bool enough = false; !enough && live.size() < kMoreThanItTakes;) {
        enough = scanWithMemoryFor(static_cast<int>(live.size()), memory);
        scanTokens(kLine);
        live.push_back(memory.live());
    }
    EXPECT_LT(live.size(), std::size_t{kMoreThanItTakes});
    EXPECT_THAT(live, ::testing::Each(live.front()));
}

TEST_F(CommandLexerMemoryTest, ScanningTakesNoMemoryForGood) {
    constexpr int kScans = 100000;
    for (int round = 0; round < 10; ++round)
        scanTokens(kLine);
    const Allocations memory;
    for (int round = 0; round < kScans; ++round)
        scanTokens(kLine);
    EXPECT_EQ(memory.live(), 0);
}
