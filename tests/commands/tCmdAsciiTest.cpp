#include "commands/tCmd.h"
#include "support/ScratchFixture.h"

using ::testing::ElementsAre;

namespace {

class tCmdAsciiTest : public CommandTest<tCmd, ScratchFixture> {
protected:
    /// A write with the data as the lexer delivers it, and what follows.
    static Tokens write(const std::string& keyword, const std::string& count, const std::string& address,
                        const std::vector<char>& data, const std::string& checksum = "") {
        Tokens list = tokens({"memory", "write", keyword, count, address});
        list.push_back(data);
        if (!checksum.empty())
            list.push_back(token(checksum));
        return list;
    }

    /// That a read is answered like this, by the command and on the wire.
    void expectAnswer(const Tokens& list, const std::string& answer) {
        expectResponse(list, answer);
        CommandTest::expectAnswer(list, "memory " + answer);
    }

    /// That a write is answered by plain success, by the command and on the wire.
    void expectOk(const Tokens& list) {
        expectError(run(list), 0, "");
        CommandTest::expectAnswer(list, "memory ok");
    }
};

std::string hexOf(const Bytes& bytes) {
    std::string text;
    for (const unsigned char byte : bytes)
        text += string_format("%02X", byte);
    return "hex(" + text + ")";
}

} // namespace

TEST_F(tCmdAsciiTest, ReadsTheBytesInTheOrderOfTheirAddresses) {
    store(0, {0x01, 0xAB, 0x00, 0xFF, 0x10, 0x20, 0x30, 0x40});
    const Rows<std::vector<std::string>, const char*> rows = {
        {{"memory", "read", "8bit", "1", "0"}, "hex(01)"},
        {{"memory", "read", "8bit", "3", "1"}, "hex(AB00FF)"},
        {{"memory", "read", "16bit", "2", "2"}, "hex(00FF1020)"},
        {{"memory", "read", "32bit", "1", "0"}, "hex(01AB00FF)"},
        {{"memory", "read", "32bit", "2", "0"}, "hex(01AB00FF10203040)"},
        {{"memory", "read", "8bitcrc", "1", "1"}, "hex(ABAB)"},
        {{"memory", "read", "8bitcrc", "3", "1"}, "hex(AAAB00FF)"},
        {{"memory", "read", "8bit", "0", "0"}, "hex()"},
        {{"memory", "read", "16bit", "0", "0"}, "hex()"},
        {{"memory", "read", "32bit", "0", "0"}, "hex()"},
        {{"memory", "read", "8bitcrc", "0", "0"}, "hex(00)"},
        {{"memory", "read", "8bit", "1", "0", "and", "more"}, "hex(01)"},
    };
    for (const auto& [request, answer] : rows)
        expectAnswer(tokens(request), answer);
}

TEST_F(tCmdAsciiTest, ReadsUpToTheLimits) {
    for (const auto& [keyword, count] :
         {std::pair{"8bit", "244"}, std::pair{"16bit", "122"}, std::pair{"32bit", "61"}}) {
        SCOPED_TRACE(keyword);
        expectAnswer(tokens({"memory", "read", keyword, count, "8"}), hexOf(stored(8, 244)));
        expectAnswer(tokens({"memory", "read", keyword, count, "0x7FFFF08"}),
                     hexOf(stored(0x7FFFF08, 244)));
    }
    expectAnswer(tokens({"memory", "read", "8bit", "1", "134217726"}),
                 hexOf(stored(kScratchBytes - 2, 1)));
    expectAnswer(tokens({"memory", "read", "8bit", "0", "134217727"}), "hex()");
}

TEST_F(tCmdAsciiTest, NumbersMayBeWrittenInThreeWays) {
    store(0, {0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA});
    const Rows<const char*, const char*, const char*> rows = {
        {"1", "10", "hex(AA)"},   {"0x1", "0xa", "hex(AA)"}, {"01", "012", "hex(AA)"},
        {"+1", "0XA", "hex(AA)"}, {"257", "3", "hex(A3)"},   {"0x102", "3", "hex(A3A4)"},
        {"-255", "3", "hex(A3)"}, {"-256", "3", "hex()"},    {"256", "3", "hex()"},
        {"x", "3", "hex()"},      {"", "3", "hex()"},        {"1", "x", "hex(A0)"},
        {"1", "", "hex(A0)"},     {"2x", "1x", "hex(A1A2)"}, {" 2", "-0", "hex(A0A1)"},
    };
    for (const auto& [count, address, answer] : rows)
        expectAnswer(tokens({"memory", "read", "8bit", count, address}), answer);
}

TEST_F(tCmdAsciiTest, WritesTheBytesInTheOrderOfTheirAddresses) {
    const Rows<const char*, const char*, Bytes, const char*> rows = {
        {"8bit", "1", {0xC1}, ""},
        {"8bit", "4", {0xC1, 0x00, 0xC3, 0xFF}, ""},
        {"16bit", "1", {0xD1, 0xD2}, ""},
        {"16bit", "3", {1, 2, 3, 4, 5, 6}, ""},
        {"32bit", "1", {0xE1, 0xE2, 0xE3, 0xE4}, ""},
        {"32bit", "2", {1, 2, 3, 4, 5, 6, 7, 8}, ""},
        {"8bit", "244", Bytes(244, 0x99), ""},
        {"16bit", "122", Bytes(244, 0x98), ""},
        {"32bit", "61", Bytes(244, 0x97), ""},
        {"8bitcrc", "3", {1, 2, 3}, "6"},
        {"8bitcrc", "2", {0xFF, 0x02}, "0x1"},
        {"8bitcrc", "2", {0x80, 0x80}, "0"},
        {"8bitcrc", "244", Bytes(244, 1), "244"},
    };
    for (const auto& [keyword, count, data, checksum] : rows) {
        SCOPED_TRACE(std::string(keyword) + " " + count);
        for (const unsigned int address : {16u, kScratchBytes - 512}) {
            store(address - 1, Bytes(256, 0x77));
            expectOk(write(keyword, count, std::to_string(address), dataToken(data), checksum));
            EXPECT_EQ(stored(address - 1, data.size() + 2), joined(joined({0x77}, data), {0x77}));
        }
    }
}

TEST_F(tCmdAsciiTest, ADataTokenMayHoldMoreThanIsWritten) {
    store(0, {0, 0, 0, 0, 0});
    expectOk(write("8bit", "2", "1", dataToken({1, 2, 3, 4})));
    EXPECT_EQ(stored(0, 5), (Bytes{0, 1, 2, 0, 0}));
    expectOk(write("8bit", "1", "3", dataToken(Bytes(255, 9))));
    EXPECT_EQ(stored(0, 5), (Bytes{0, 1, 2, 9, 0}));
    expectOk(write("8bitcrc", "1", "0", dataToken({5, 6, 7}), "5"));
    EXPECT_EQ(stored(0, 5), (Bytes{5, 1, 2, 9, 0}));
}

TEST_F(tCmdAsciiTest, AWordsCharactersAreBytesAndSoIsItsZero) {
    store(0, {7, 7, 7, 7, 7, 7});
    expectOk(write("8bit", "4", "0", token("abc")));
    EXPECT_EQ(stored(0, 5), (Bytes{'a', 'b', 'c', 0, 7}));
}

TEST_F(tCmdAsciiTest, NothingWrittenIsASuccess) {
    const Bytes before = allStored();
    for (const char* keyword : {"8bit", "16bit", "32bit"}) {
        SCOPED_TRACE(keyword);
        expectOk(write(keyword, "0", "0", dataToken({1, 2, 3})));
        expectOk(write(keyword, "0", "4", {}));
        expectOk(write(keyword, "256", "0", {}));
    }
    expectOk(write("8bitcrc", "0", "0", {}, "0"));
    expectOk(write("8bitcrc", "0", "134217727", dataToken({1}), "x"));
    EXPECT_EQ(allStored(), before);
}

TEST_F(tCmdAsciiTest, AWrongChecksumIsToldAndTheBytesAreWritten) {
    const Rows<const char*, const char*> rows = {
        {"5", "Invalid checksum in write request: 0x05 "},
        {"0", "Invalid checksum in write request: 0x00 "},
        {"x", "Invalid checksum in write request: 0x00 "},
        {"0xfe", "Invalid checksum in write request: 0xFE "},
        {"0x106", "Invalid checksum in write request: 0x106 "},
        {"-250", "Invalid checksum in write request: 0xFFFFFF06 "},
    };
    for (const auto& [checksum, text] : rows) {
        SCOPED_TRACE(checksum);
        const Tokens list = write("8bitcrc", "3", "8", dataToken({1, 2, 3}), checksum);
        store(8, {9, 9, 9, 9});
        expectError(run(list), kGenericError, text);
        EXPECT_THAT(stored(8, 4), ElementsAre(1, 2, 3, 9));
        store(8, {9, 9, 9, 9});
        expectErrorSent(m_frontEnd, list, kGenericError, text);
        EXPECT_THAT(stored(8, 4), ElementsAre(1, 2, 3, 9));
    }
}

TEST_F(tCmdAsciiTest, WordsMayComeWithoutTheirZero) {
    store(0, {0xA0, 0xA1});
    expectAnswer({token("memory"), dataToken({'r', 'e', 'a', 'd'}), dataToken({'8', 'b', 'i', 't'}),
                  dataToken({'2'}), dataToken({'0'})},
                 "hex(A0A1)");
}
