// Block devices over the ASCII protocol.
#include <filesystem>

#include "support/BlockUnit.h"

namespace {

constexpr std::uint32_t kBlock = BlockFile::kBlock;

constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kInvalidSubCommand[] = "Invalid Subcommand";

class mCmdAsciiTest : public CommandTest<mCmd, BlockUnit> {
protected:
    void expectRefused(const Words& words, const std::string& text) {
        CommandTest::expectRefused(words, kGenericError, text);
    }

    void expectAnswer(const Words& words, const std::string& answer) {
        CommandTest::expectAnswer(words, "blockdev " + answer);
    }
};

} // namespace

TEST_F(mCmdAsciiTest, MovesBlocksFromOneDeviceToAnother) {
    BlockFile disc(kOpticalPath, 15);
    const BlockFile flash(kFlashPath, 15);
    disc.fill(10, 'k');
    disc.fill(13, 'n');
    expectAnswer({"blockdev", "open", "178", "0"}, "ok");
    expectAnswer({"blockdev", "open", "180", "1"}, "ok");
    expectAnswer({"blockdev", "read", "178", "0", "10", "4", "0x2001"}, "base64(AABAAA==)");
    EXPECT_EQ(scratch(0x2001, 4 * kBlock), disc.blocks(10, 4));
    expectAnswer({"blockdev", "write", "180", "1", "0", "1", "0x2001"}, "base64(AAAQAA==)");
    EXPECT_EQ(flash.blocks(0, 2), blocksOf('k') + blocksOf('\0'));
    expectAnswer({"blockdev", "close", "178", "0"}, "ok");
    expectAnswer({"blockdev", "close", "180", "1"}, "ok");
}

TEST_F(mCmdAsciiTest, AnswersTheBytesThatWereMoved) {
    BlockFile card(kCardPath, 15);
    expectAnswer({"blockdev", "open", "180", "0"}, "ok");
    expectAnswer({"blockdev", "read", "180", "0", "3", "0", "0"}, "base64(AAAAAA==)");
    expectAnswer({"blockdev", "write", "180", "0", "3", "0", "0"}, "base64(AAAAAA==)");
    expectAnswer({"blockdev", "read", "180", "0", "0", "14", "0"}, "base64(AADgAA==)");
    card.resize(kBlock + 0x234);
    expectAnswer({"blockdev", "read", "180", "0", "0", "14", "0"}, "base64(AAASNA==)");
}

TEST_F(mCmdAsciiTest, NumbersComeInAnyNotation) {
    BlockFile card(kCardPath, 15);
    card.fill(10, 'k');
    setScratch(0, blocksOf('.', 3));
    expectAnswer({"blockdev", "open", "0xB4", "0x0"}, "ok");
    expectAnswer({"blockdev", "read", "0264", "00", "012", "0x1", "010000"}, "base64(AAAQAA==)");
    EXPECT_EQ(scratch(0, 3 * kBlock), blocksOf('.') + blocksOf('k') + blocksOf('.'));
    expectAnswer({"blockdev", "read", "180", "none", "none", "none", "none"}, "base64(AAAAAA==)");
}

TEST_F(mCmdAsciiTest, NegativeAndLargeNumbersAreOutOfRange) {
    BlockFile card(kCardPath, 15);
    card.fill(0, 'a');
    expectAnswer({"blockdev", "open", "180", "0"}, "ok");
    setScratch(0, blocksOf('.'));
    const char* const noStart = "Startblock does not Exist on Device, errorCode: 16842752";
    const char* const noEnd = "Endblock does not exist on Device, errorCode: 16842752";
    const char* const noData = "Number of Bytes to Read overrides internal Memory, errorCode: 16842752";
    const char* const noOffset = "Memoryoffset out of Range";
    const Rows<const char*, const char*, const char*, const char*, const char*> rows = {
        {"15", "1", "0", noStart, noStart},
        {"0x100000000", "1", "0", noStart, noStart},
        {"-0x100000000", "1", "0", noStart, noStart},
        {"0", "0x100000001", "0", noEnd, noEnd},
        {"0", "1", "0x100000000", noOffset, noData},
        {"0", "1", "-0x100000000", noOffset, noData},
        {"-1", "1", "0", noStart, noStart},
        {"0xFFFFFFFF", "2", "0", noStart, noStart},
        {"10", "5", "0", noEnd, noEnd},
        {"1", "-1", "0", noEnd, noEnd},
        {"0", "-2147483648", "0", noEnd, noEnd},
        {"0", "1", "0x8000000", noOffset, noData},
        {"0", "1", "-1", noOffset, noData},
        {"0", "1", "0xF0000000", noOffset, noData},
    };
    for (const auto& [first, count, offset, readText, writeText] : rows) {
        SCOPED_TRACE(std::string(first) + " " + count + " " + offset);
        expectRefused({"blockdev", "read", "180", "0", first, count, offset}, readText);
        expectRefused({"blockdev", "write", "180", "0", first, count, offset}, writeText);
    }
    EXPECT_EQ(card.block(0), blocksOf('a'));
    EXPECT_EQ(scratch(0, kBlock), blocksOf('.'));
}

TEST_F(mCmdAsciiTest, ANumberThatIsNoByteNamesNoDevice) {
    const BlockFile card(kCardPath, 3);
    const char* const unknownType = "Device Type is unknown";
    const char* const noSuchId = "Device ID does not exist";
    const Rows<const char*, const char*, const char*> rows = {
        {"436", "0", unknownType},
        {"436", "256", unknownType},
        {"-76", "0", unknownType},
        {"0x1000000B4", "0", unknownType},
        {"180", "256", noSuchId},
        {"180", "-256", noSuchId},
        {"180", "-1", noSuchId},
        {"180", "0x10001", noSuchId},
        {"178", "256", noSuchId},
        {"180", "0x100000000", noSuchId},
        {"179", "256", "No Device inserted"},
        {"180", "-0x100000000", noSuchId},
    };
    for (const auto& [type, id, text] : rows) {
        SCOPED_TRACE(std::string(type) + " " + id);
        for (const char* operation : {"open", "close", "jump"})
            expectRefused({"blockdev", operation, type, id}, text);
        expectRefused({"blockdev", "read", type, id, "0", "1", "0"}, text);
    }
}

TEST_F(mCmdAsciiTest, SubcommandsAreRecognisedByTheirBeginning) {
    const BlockFile card(kCardPath, 3);
    expectAnswer({"blockdev", "opening", "180", "0"}, "ok");
    expectAnswer({"blockdev", "reader", "180", "0", "0", "1", "0"}, "base64(AAAQAA==)");
    expectAnswer({"blockdev", "writeback", "180", "0", "0", "1", "0"}, "base64(AAAQAA==)");
    expectAnswer({"blockdev", "closed", "180", "0"}, "ok");
    const Tokens bare = {token("blockdev"), {'o', 'p', 'e', 'n'}, {'1', '8', '0'}, {'0'}};
    EXPECT_EQ(send(bare), "blockdev ok") << "without zero bytes";
    const Tokens cut = {token("blockdev"), {'o', 'p', 'e'}, {'1', '8', '0'}, {'0'}};
    CommandTest::expectRefused(cut, kGenericError, kInvalidSubCommand);
}

TEST_F(mCmdAsciiTest, WhatIsNoRequestForItIsRefused) {
    const BlockFile card(kCardPath, 3);
    const Rows<Words, const char*> rows = {
        {Words{}, kInvalidLength},
        {{"blockdev"}, kInvalidLength},
        {{"blockdev", "open"}, kInvalidLength},
        {{"blockdev", "open", "180"}, kInvalidLength},
        {{"blockdev", "jump", "7"}, kInvalidLength},
        {{"blockdev", "open", "180", "0", "0"}, kInvalidLength},
        {{"blockdev", "close", "180", "0", "0"}, kInvalidLength},
        {{"blockdev", "read", "180", "0"}, kInvalidLength},
        {{"blockdev", "read", "180", "0", "0", "1"}, kInvalidLength},
        {{"blockdev", "read", "180", "0", "0", "1", "0", "0"}, kInvalidLength},
        {{"blockdev", "write", "180", "0", "0", "1"}, kInvalidLength},
        {{"blockdev", "write", "180", "0", "0", "1", "0", "0"}, kInvalidLength},
        {{"blockdev", "ope", "180", "0"}, kInvalidSubCommand},
        {{"blockdev", "OPEN", "180", "0"}, kInvalidSubCommand},
        {{"blockdev", "clos", "180", "0"}, kInvalidSubCommand},
        {{"blockdev", "writ", "180", "0", "0", "1", "0"}, kInvalidSubCommand},
        {{"blockdev", "", "180", "0"}, kInvalidSubCommand},
        {{"blockdev", "%s", "180", "0", "0", "1", "0", "0"}, kInvalidSubCommand},
        {{"blockdev", "jump", "180", "2"}, "Device ID does not exist"},
        {{"blockdev", "open", "181", "0"}, "Device Type is unknown"},
        {{"blockdev", "open", "card", "0"}, "Device Type is unknown"},
        {{"blockdev", "open", "179", "1"}, "No Device inserted"},
        {{"blockdev", "open", "176", "0"}, "Probably due to failures no such Device was registered"},
    };
    for (const auto& [words, text] : rows)
        expectRefused(words, text);
}

TEST_F(mCmdAsciiTest, AFailureIsReportedWithItsErrorCode) {
    expectRefused({"blockdev", "open", "178", "0"}, "Device not inserted, errorCode: 16842752");
    expectRefused({"blockdev", "close", "178", "0"}, "Device not inserted, errorCode: 16842752");
    const BlockFile disc(kOpticalPath, 3);
    expectRefused({"blockdev", "read", "178", "0", "0", "1", "0"},
                  "Device is not properly opened, file descriptor is invalid, errorCode: 16842752");
    expectRefused({"blockdev", "write", "178", "0", "0", "1", "0"},
                  "Device is not proprely opened, file descriptor is invalid, errorCode: 16842752");
    expectAnswer({"blockdev", "open", "178", "0"}, "ok");
    expectRefused({"blockdev", "write", "178", "0", "0", "1", "0"},
                  "Device is Read-Only declared, errorCode: 16842752");
    std::filesystem::create_directory(kCardPath);
    expectRefused({"blockdev", "open", "180", "0"},
                  "Failed to open Device /dev/mnand0: Is a directory, errorCode: 21");
}
