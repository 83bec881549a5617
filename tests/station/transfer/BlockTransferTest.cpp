#include "BlockTransferTest.h"

#include "transfer/Checksum.h"

namespace station {
namespace {

using BlockTransfer = BlockTransferTest;

TEST_F(BlockTransfer, DumpsSomeBlocks) {
    run(dump(BlockRange{3, 4}));
    EXPECT_THAT(
        session.requests(),
        ElementsAre("blockdev open 180 1", "blockdev read 180 1 4 1 0", "blockdev read 180 1 3 2 0",
                    "memory read 8bitcrc 244 0", "memory read 8bitcrc 244 244",
                    "memory read 8bitcrc 244 488", "memory read 8bitcrc 244 732",
                    "memory read 8bitcrc 48 976", "diag cksum 0 0 1024", "blockdev close 180 1"));
    EXPECT_EQ(contentOf(path("target")), m_content.substr(3 * kBlock, 2 * kBlock));
    EXPECT_EQ(figures.checksum, checksumOf(m_content.substr(3 * kBlock, 2 * kBlock)));
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(BlockTransfer, DumpsAllThatCanBeTransferred) {
    for (std::size_t blocks = 2; blocks <= kBlocks; ++blocks) {
        SCOPED_TRACE(blocks);
        session.device = m_content.substr(0, blocks * kBlock);
        notes.clear();
        run(dump());
        EXPECT_TRUE(contentOf(path("target")) == m_content.substr(0, (blocks - 1) * kBlock));
        EXPECT_THAT(
            notes, ElementsAre(HasSubstr("last block, " + std::to_string(blocks - 1) + ", is missing")));
        EXPECT_FALSE(session.isOpen);
        EXPECT_THAT(infos, IsEmpty()); // the refusals with which the end is found
    }
}

TEST_F(BlockTransfer, TurnsTheBufferOverForALargeDevice) {
    constexpr std::size_t kLarge = 5000;
    session.device = variedBytes(kLarge * kBlock);
    run(dump());
    EXPECT_TRUE(contentOf(path("target")) == session.device.substr(0, (kLarge - 1) * kBlock));
    EXPECT_EQ(session.count("blockdev read 180 1 0 2048 0"), 1U);
    EXPECT_EQ(session.count("blockdev read 180 1 2048 2048 0"), 1U);
    EXPECT_EQ(session.count("blockdev read 180 1 4096 903 0"), 1U);
    const std::string bytes = session.device.substr(0, 3 * (std::size_t{1} << 20) / 2 + 1);
    session.device.assign(kLarge * kBlock, 'x');
    run(flash(bytes, 1));
    EXPECT_TRUE(session.device.substr(kBlock, bytes.size()) == bytes);
    EXPECT_EQ(session.count("blockdev write 180 1 1 2048 0"), 1U);
    EXPECT_EQ(session.count("blockdev write 180 1 2049 1025 0"), 1U);
}

TEST_F(BlockTransfer, FlashesWholeBlocks) {
    const std::string bytes(2 * kBlock, 'n');
    run(flash(bytes, 5));
    EXPECT_TRUE(session.device == contentWith(bytes, 5));
    EXPECT_THAT(
        session.requests(),
        ElementsAre("blockdev open 180 1", "blockdev read 180 1 5 1 0", "blockdev write 180 1 5 0 0",
                    "blockdev read 180 1 6 1 0", "memory write 8bitcrc 244 0 DATA 216",
                    "memory write 8bitcrc 244 244 DATA 216", "memory write 8bitcrc 244 488 DATA 216",
                    "memory write 8bitcrc 244 732 DATA 216", "memory write 8bitcrc 48 976 DATA 160",
                    "diag cksum 0 0 1024", "blockdev write 180 1 5 2 0",
                    "blockdev read 180 1 5 2 67108864", "diag cksum 0 67108864 1024",
                    "blockdev close 180 1"));
    EXPECT_THAT(notes, IsEmpty());
    EXPECT_EQ(figures.checksum, checksumOf(bytes));
}

TEST_F(BlockTransfer, KeepsTheRestOfALastBlockThatTheFileDoesNotFill) {
    for (const std::size_t size :
         {std::size_t{1}, std::size_t{3}, std::size_t{4}, kBlock - 1, kBlock + 1, 2 * kBlock + 3}) {
        SCOPED_TRACE(size);
        session.device = m_content;
        notes.clear();
        const std::string bytes(size, 'n');
        run(flash(bytes, 7));
        EXPECT_TRUE(session.device == contentWith(bytes, 7));
        EXPECT_THAT(notes,
                    ElementsAre(AllOf(HasSubstr("inside block " + std::to_string(7 + size / kBlock)),
                                      HasSubstr("keeps its content"))));
    }
}

TEST_F(BlockTransfer, FlashesUpToTheLastBlockThatCanBeTransferred) {
    const std::string bytes(2 * kBlock, 'n');
    run(flash(bytes, kBlocks - 3));
    EXPECT_TRUE(session.device == contentWith(bytes, kBlocks - 3));
    EXPECT_THAT(failureOf<Refused>(flash(bytes, kBlocks - 2)),
                AllOf(HasSubstr("Endblock does not exist on Device"),
                      HasSubstr("(a unit never transfers a device's last block)")));
    EXPECT_EQ(leftover(), "nothing was written to the device");
    EXPECT_FALSE(session.isOpen);
}

TEST_F(BlockTransfer, GoesOnAfterATransferOfFewerBlocks) {
    bool isShort = false;
    session.before = [&](const std::string& request, std::size_t) -> std::optional<Answer> {
        if (isShort || request != "blockdev read 180 1 2 8 0")
            return std::nullopt;
        isShort = true;
        std::copy_n(m_content.begin() + 2 * kBlock, 3 * kBlock, session.buffer());
        return Answer{"base64(AAAGAA==)"}; // 1536 bytes
    };
    run(dump(BlockRange{2, 9}));
    EXPECT_EQ(session.count("blockdev read 180 1 5 5 1536"), 1U);
    EXPECT_TRUE(contentOf(path("target")) == m_content.substr(2 * kBlock, 8 * kBlock));
}

TEST_F(BlockTransfer, RefusesBlocksWhosePositionWouldWrap) {
    // Read at a block that the fake does not have: only its size is asked for.
    session.before = [&](const std::string& request, std::size_t) -> std::optional<Answer> {
        if (request.find("read 180 1 8388608 1") == std::string::npos)
            return std::nullopt;
        return Answer{"base64(AAACAA==)"};
    };
    EXPECT_THAT(failureOf<Failure>(dump(BlockRange{0, 8388608})), HasSubstr("the first 4 GiB"));
    EXPECT_THAT(failureOf<Failure>(flash("new", 8388608)), HasSubstr("the first 4 GiB"));
    EXPECT_EQ(session.count("blockdev write"), 0U);
    EXPECT_EQ(session.count("blockdev close"), 2U);
}

TEST_F(BlockTransfer, DumpsTheFirst4GiBOfALargerDeviceOnly) {
    // One that has every block; the first turn is refused, so that nothing large is moved.
    session.before = [&](const std::string& request, std::size_t) -> std::optional<Answer> {
        if (request.find("read 180 1 0 2048 0") != std::string::npos)
            return Answer{"Error 0x1", 1};
        if (request.find("blockdev read") == std::string::npos)
            return std::nullopt;
        return Answer{"base64(AAACAA==)"};
    };
    EXPECT_EQ(failureOf<Refused>(dump()), "refused: Error 0x1");
    EXPECT_THAT(notes, ElementsAre(AllOf(HasSubstr("blocks 0 to 8388607"), HasSubstr("4 GiB"))));
}

} // namespace
} // namespace station
