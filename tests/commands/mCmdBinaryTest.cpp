// Block devices over the binary protocol.
#include <filesystem>

#include "support/BlockUnit.h"

namespace {

enum Operation : unsigned char { Open = 1, Close = 2, Read = 3, Write = 4 };

constexpr std::uint32_t kBlock = BlockFile::kBlock;
constexpr std::uint32_t kScratchBytes = 0x8000000;

constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kInvalidSubCommand[] = "Invalid Subcommand";
constexpr char kOffsetOutOfRange[] = "Memoryoffset out of Range";
constexpr char kNoSpace[] = "Not Enough Memory to save read Data, errorCode: 16842752";
constexpr char kNoData[] = "Number of Bytes to Read overrides internal Memory, errorCode: 16842752";
constexpr char kNotInserted[] = "Device not inserted, errorCode: 16842752";

Bytes request(unsigned char type, unsigned char id, Operation operation) {
    return {5, 'm', type, id, operation};
}

Bytes transfer(unsigned char type, unsigned char id, Operation operation, std::uint32_t first,
               std::uint32_t count, std::uint32_t offset) {
    Bytes frame = {17, 'm', type, id, operation};
    for (const std::uint32_t number : {first, count, offset})
        frame = joined(frame, bigEndian(number));
    return frame;
}

class mCmdBinaryTest : public CommandTest<mCmd, BlockUnit> {
protected:
    void expectRefused(const Bytes& frame, const std::string& text) {
        CommandTest::expectRefused(frame, kGenericError, text);
    }
};

} // namespace

TEST_F(mCmdBinaryTest, MovesBlocksFromOneDeviceToAnother) {
    BlockFile disc(kOpticalPath, 15);
    const BlockFile card(kCardPath, 15);
    for (unsigned block = 0; block < 15; ++block)
        disc.fill(block, static_cast<char>('a' + block));
    setScratch(0x1000, blocksOf('.', 6));
    expectDone(request(kOptical, 0, Open));
    expectDone(request(kCard, 0, Open));
    expectDone(transfer(kOptical, 0, Read, 10, 4, 0x1001), bigEndian(4 * kBlock));
    EXPECT_EQ(scratch(0x1000, 6 * kBlock), "." + disc.blocks(10, 4) + blocksOf('.', 2).substr(1));
    expectDone(transfer(kCard, 0, Write, 2, 4, 0x1001), bigEndian(4 * kBlock));
    EXPECT_EQ(card.blocks(0, 15), blocksOf('\0', 2) + disc.blocks(10, 4) + blocksOf('\0', 9));
    expectDone(request(kOptical, 0, Close));
    expectDone(request(kCard, 0, Close));
}

TEST_F(mCmdBinaryTest, ASuccessIsAFrameOfItsOwn) {
    const BlockFile card(kCardPath, 3);
    expectResponse(request(kCard, 0, Open));
    expectResponse(transfer(kCard, 0, Read, 0, 1, 0), bigEndian(kBlock));
    expectResponse(transfer(kCard, 0, Write, 0, 1, 0), bigEndian(kBlock));
    expectResponse(request(kCard, 0, Close));
}

TEST_F(mCmdBinaryTest, TheDevicesIdIsEchoed) {
    const BlockFile flash(kFlashPath, 3);
    expectDone(request(kCard, 1, Open));
    expectDone(request(kCard, 1, Open));
    expectDone(transfer(kCard, 1, Read, 0, 0, 0), bigEndian(0));
    expectDone(transfer(kCard, 1, Write, 0, 2, 0), bigEndian(2 * kBlock));
    expectDone(request(kCard, 1, Close));
    expectDone(request(kCard, 1, Close));
}

TEST_F(mCmdBinaryTest, NumbersComeMostSignificantByteFirst) {
    BlockFile card(kCardPath, 0x01020400);
    card.fill(0x20304, 'x'); // where block 0x01020304 begins, less 64 GiB
    setScratch(0x01020300, blocksOf('.', 0x11));
    expectDone(request(kCard, 0, Open));
    expectDone(transfer(kCard, 0, Read, 0x01020304, 0x10, 0x01020300), bigEndian(0x10000));
    EXPECT_EQ(scratch(0x01020300, 0x11 * kBlock), blocksOf('x') + blocksOf('\0', 0xF) + blocksOf('.'));
}

TEST_F(mCmdBinaryTest, WhatIsNoRequestForItIsRefused) {
    const BlockFile card(kCardPath, 3);
    Bytes tooLong = transfer(kCard, 0, Read, 0, 1, 0);
    tooLong.push_back(0);
    tooLong[0] = 18;
    Bytes tooShort = transfer(kCard, 0, Write, 0, 1, 0);
    tooShort.pop_back();
    tooShort[0] = 16;
    Bytes longOpen = transfer(kCard, 0, Open, 0, 1, 0);
    const Rows<Bytes, const char*> rows = {
        {{3, 'm', kCard}, kInvalidLength},
        {{4, 'm', kCard, 0}, kInvalidLength},
        {{4, 'm', 0, 0}, kInvalidLength},
        {{6, 'm', kCard, 0, Open, 0}, kInvalidLength},
        {{6, 'm', kCard, 0, Close, 0}, kInvalidLength},
        {longOpen, kInvalidLength},
        {{5, 'm', kCard, 0, Read}, kInvalidLength},
        {{5, 'm', kCard, 0, Write}, kInvalidLength},
        {tooLong, kInvalidLength},
        {tooShort, kInvalidLength},
        {{5, 'm', kCard, 0, 0}, kInvalidSubCommand},
        {{5, 'm', kCard, 0, 5}, kInvalidSubCommand},
        {{6, 'm', kCard, 0, 255, 0}, kInvalidSubCommand},
        {{5, 'm', kCard, 2, 0}, "Device ID does not exist"},
        {{6, 'm', kStick, 1, Open, 0}, "No Device inserted"},
        {{5, 'm', 176, 0, Open}, "Probably due to failures no such Device was registered"},
        {{5, 'm', 181, 0, Read}, "Device Type is unknown"},
    };
    for (const auto& [frame, text] : rows)
        expectRefused(frame, text);
}

TEST_F(mCmdBinaryTest, AFailureIsReportedWithItsErrorCode) {
    expectRefused(request(kCard, 0, Open), kNotInserted);
    expectRefused(request(kCard, 0, Close), kNotInserted);
    expectRefused(transfer(kCard, 0, Read, 0, 1, 0), kNotInserted);
    expectRefused(transfer(kCard, 0, Write, 0, 1, 0), kNotInserted);
    std::filesystem::create_directory(kCardPath);
    expectRefused(request(kCard, 0, Open),
                  "Failed to open Device /dev/mnand0: Is a directory, errorCode: 21");
    remove(kCardPath);

    const BlockFile card(kCardPath, 15);
    expectRefused(transfer(kCard, 0, Read, 0, 1, 0),
                  "Device is not properly opened, file descriptor is invalid, errorCode: 16842752");
    expectRefused(transfer(kCard, 0, Write, 0, 1, 0),
                  "Device is not proprely opened, file descriptor is invalid, errorCode: 16842752");
    expectDone(request(kCard, 0, Open));
    expectRefused(transfer(kCard, 0, Read, 15, 1, 0),
                  "Startblock does not Exist on Device, errorCode: 16842752");
    expectRefused(transfer(kCard, 0, Read, 10, 5, 0),
                  "Endblock does not exist on Device, errorCode: 16842752");
    expectRefused(transfer(kCard, 0, Write, 10, 10, 0),
                  "Endblock does not exist on Device, errorCode: 16842752");
    expectRefused(transfer(kCard, 0, Write, 1, 0xFFFFFFFF, 0),
                  "Endblock does not exist on Device, errorCode: 16842752");
    expectDone(transfer(kCard, 0, Read, 10, 4, 0), bigEndian(4 * kBlock));
}

TEST_F(mCmdBinaryTest, AReadOnlyDeviceIsNotWrittenTo) {
    const BlockFile disc(kOpticalPath, 3);
    expectDone(request(kOptical, 0, Open));
    setScratch(0, blocksOf('x'));
    expectRefused(transfer(kOptical, 0, Write, 0, 1, 0),
                  "Device is Read-Only declared, errorCode: 16842752");
    EXPECT_EQ(disc.blocks(0, 3), blocksOf('\0', 3));
}

TEST_F(mCmdBinaryTest, AReadStaysInsideTheScratchBuffer) {
    // Whatever the device: the offset is looked at first.
    for (const std::uint32_t offset : {kScratchBytes, kScratchBytes + 1, 0x80000000U, 0xFFFFFFFFU})
        expectRefused(transfer(kCard, 0, Read, 0, 1, offset), kOffsetOutOfRange);
    BlockFile card(kCardPath, 0x200000);
    card.fill(0, 'a');
    expectDone(request(kCard, 0, Open));
    setScratch(kScratchBytes - 2 * kBlock, blocksOf('.', 2));
    for (const std::uint32_t offset : {kScratchBytes - kBlock + 1, kScratchBytes - 1})
        expectRefused(transfer(kCard, 0, Read, 0, 1, offset), kNoSpace);
    // In 32 bits these are 0, 4096 and nearly 4 GiB.
    for (const std::uint32_t count : {0x100000U, 0x100001U, 0xFFFFFU})
        expectRefused(transfer(kCard, 0, Read, 0, count, 0), kNoSpace);
    expectRefused(transfer(kCard, 0, Read, 0, kScratchBytes / kBlock + 1, 0), kNoSpace);
    expectRefused(transfer(kCard, 0, Read, 0, kScratchBytes / kBlock, 1), kNoSpace);
    EXPECT_EQ(scratch(kScratchBytes - 2 * kBlock, 2 * kBlock), blocksOf('.', 2));
    expectDone(transfer(kCard, 0, Read, 0, 1, kScratchBytes - kBlock), bigEndian(kBlock));
    EXPECT_EQ(scratch(kScratchBytes - 2 * kBlock, 2 * kBlock), blocksOf('.') + blocksOf('a'));
    card.resize(2 * kBlock); // so that not all of it has to be moved
    expectDone(transfer(kCard, 0, Read, 0, kScratchBytes / kBlock, 0), bigEndian(2 * kBlock));
}

TEST_F(mCmdBinaryTest, AWriteStaysInsideTheScratchBuffer) {
    const BlockFile card(kCardPath, 0x200000);
    expectRefused(transfer(kCard, 0, Write, 0, 1, 0xFFFFFFFF),
                  "Device is not proprely opened, file descriptor is invalid, errorCode: 16842752");
    expectDone(request(kCard, 0, Open));
    // At the later ones the space that is left is a positive number, if it wraps.
    for (const std::uint32_t offset : {kScratchBytes - kBlock + 1, kScratchBytes, kScratchBytes + 1,
                                       0x88000000U, 0x88000001U, 0xF0000000U, 0xFFFFFFFFU})
        expectRefused(transfer(kCard, 0, Write, 0, 1, offset), kNoData);
    expectRefused(transfer(kCard, 0, Write, 0, 0, kScratchBytes + 1), kNoData);
    for (const std::uint32_t count : {0x100000U, 0x100001U, kScratchBytes / kBlock + 1})
        expectRefused(transfer(kCard, 0, Write, 0, count, 0), kNoData);
    EXPECT_EQ(card.block(0), blocksOf('\0'));
    setScratch(kScratchBytes - kBlock, blocksOf('z'));
    expectDone(transfer(kCard, 0, Write, 0, 1, kScratchBytes - kBlock), bigEndian(kBlock));
    EXPECT_EQ(card.blocks(0, 2), blocksOf('z') + blocksOf('\0'));
}

TEST_F(mCmdBinaryTest, ADeviceThatGivesLessIsBelieved) {
    BlockFile card(kCardPath, 15);
    expectDone(request(kCard, 0, Open));
    card.resize(kBlock + 0x123);
    expectDone(transfer(kCard, 0, Read, 0, 3, 0), bigEndian(0x1123));
    card.resize(0);
    expectDone(transfer(kCard, 0, Read, 0, 3, 0), bigEndian(0));
}

TEST_F(mCmdBinaryTest, ARemovedDeviceIsOpenedAgainOnceItIsBack) {
    BlockFile(kStickPath, 3).fill(0, 'a');
    expectDone(request(kStick, 0, Open));
    remove(kStickPath);
    expectRefused(transfer(kStick, 0, Read, 0, 1, 0), kNotInserted);
    expectRefused(transfer(kStick, 0, Write, 0, 1, 0), kNotInserted);
    expectRefused(request(kStick, 0, Close), kNotInserted);
    expectRefused(request(kStick, 0, Open), kNotInserted);
    BlockFile(kStickPath, 3).fill(0, 'b');
    expectDone(request(kStick, 0, Open));
    expectDone(transfer(kStick, 0, Read, 0, 1, 0), bigEndian(kBlock));
    EXPECT_EQ(scratch(0, kBlock), blocksOf('b'));
}
