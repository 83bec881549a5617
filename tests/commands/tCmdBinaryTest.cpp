// Binary requests that are carried out.
#include <numeric>

#include "commands/tCmd.h"
#include "support/ScratchFixture.h"

using ::testing::ElementsAre;

namespace {

constexpr unsigned int kWrongChecksum = 0x08000400;

class tCmdBinaryTest : public CommandTest<tCmd, ScratchFixture> {
protected:
    /// That a request is answered like this, by the command and on the wire.
    void expectData(const Bytes& request, const Bytes& data) {
        expectResponse(request, data);
        expectDone(request, data);
    }
};

unsigned char sumOf(const Bytes& bytes) {
    return static_cast<unsigned char>(std::accumulate(bytes.begin(), bytes.end(), 0U));
}

Bytes countingUp(std::size_t count, unsigned char first = 1) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

} // namespace

TEST_F(tCmdBinaryTest, ReadsTheBytesInTheOrderOfTheirAddresses) {
    const Rows<unsigned char, unsigned char, unsigned char, unsigned int> rows = {
        {0, 1, 1, 0},  {0, 1, 3, 1},  {0, 1, 244, 5}, {0, 1, 1, kScratchBytes - 2},
        {2, 2, 1, 2},  {2, 2, 3, 6},  {2, 2, 122, 2}, {0, 1, 244, kScratchBytes - 245},
        {4, 4, 1, 4},  {4, 4, 2, 12}, {4, 4, 61, 8},  {2, 2, 122, kScratchBytes - 246},
        {2, 2, 1, 10}, {4, 4, 1, 20}, {2, 2, 1, 0},   {4, 4, 61, kScratchBytes - 248},
    };
    for (const auto& [code, width, count, address] : rows) {
        SCOPED_TRACE(::testing::PrintToString(access(code, count, address)));
        const std::size_t total = std::size_t{width} * count;
        expectData(access(code, count, address), stored(address, total));
    }
}

TEST_F(tCmdBinaryTest, AReadWithChecksumAnswersTagAndChecksumFirst) {
    store(0, {1, 2, 3, 0x80, 0x80, 0xFF});
    expectAnswer(access(6, 3, 0, {0x12, 0x34}), {14, 't', 6, 3, 0, 0, 0, 0, 0x12, 0x34, 6, 1, 2, 3});
    expectAnswer(access(6, 3, 3, {0xFF, 0x80}),
                 {14, 't', 6, 3, 0, 0, 0, 0, 0xFF, 0x80, 0xFF, 0x80, 0x80, 0xFF});
    for (const unsigned char count : Bytes{1, 2, 100, 243, 244}) {
        SCOPED_TRACE(count);
        const Bytes expected = stored(7, count);
        expectData(access(6, count, 7, {0, 1}), joined({0, 1, sumOf(expected)}, expected));
    }
}

TEST_F(tCmdBinaryTest, TheLargestAnswerFillsAFrame) {
    EXPECT_EQ(send(access(6, 244, 0, {0, 0})).size(), 255u);
    EXPECT_EQ(send(access(6, 244, 0, {0, 0})).front(), 0xFF);
}

TEST_F(tCmdBinaryTest, WritesTheBytesInTheOrderOfTheirAddresses) {
    const Rows<unsigned char, unsigned char, unsigned int, std::size_t> rows = {
        {1, 1, 0, 1}, {1, 5, 3, 5},  {1, 244, 1, 244}, {1, 1, kScratchBytes - 2, 1},
        {3, 1, 2, 2}, {3, 3, 10, 6}, {3, 122, 2, 244}, {3, 1, kScratchBytes - 4, 2},
        {5, 1, 4, 4}, {5, 2, 16, 8}, {5, 61, 8, 244},  {5, 1, kScratchBytes - 8, 4},
    };
    unsigned char first = 1;
    for (const auto& [code, count, address, total] : rows) {
        SCOPED_TRACE(::testing::PrintToString(access(code, count, address)));
        const Bytes data = countingUp(total, ++first);
        Bytes expected = allStored();
        const unsigned int place =
            address < kPrepared ? address : address - (kScratchBytes - 2 * kPrepared);
        std::copy(data.begin(), data.end(), expected.begin() + place);
        expectData(access(code, count, address, data), {});
        EXPECT_EQ(allStored(), expected) << "and nothing else";
    }
}

TEST_F(tCmdBinaryTest, BytesBehindTheAnnouncedOnesAreIgnored) {
    const Bytes before = stored(0, kPrepared);
    expectData(access(1, 2, 100, {0xA1, 0xA2, 0xA3, 0xA4}), {});
    EXPECT_EQ(stored(100, 4), (Bytes{0xA1, 0xA2, before[102], before[103]}));
    expectData(access(7, 1, 200, {9, 9, 0xA1, 0xA1, 0xA2}), {0, 0, 0xA1});
    EXPECT_EQ(stored(200, 2), (Bytes{0xA1, before[201]}));
}

TEST_F(tCmdBinaryTest, AWriteWithChecksumAnswersTheChecksum) {
    const Rows<Bytes, unsigned char> rows = {
        {{1, 2, 3}, 6}, {{0xFF, 0x02}, 1}, {{0}, 0}, {{0x80, 0x80}, 0}, {countingUp(244), 0xC2}};
    for (const auto& [data, checksum] : rows) {
        SCOPED_TRACE(data.size());
        const auto count = static_cast<unsigned char>(data.size());
        for (const unsigned char ignored : Bytes{0x00, 0xFF}) {
            store(4, Bytes(244, 0x77));
            expectData(access(7, count, 4, joined({ignored, ignored, checksum}, data)),
                       {0, 0, checksum});
            EXPECT_EQ(stored(4, data.size()), data);
        }
    }
}

TEST_F(tCmdBinaryTest, AWrongChecksumIsAnsweredAndTheBytesAreWritten) {
    for (const unsigned char wrong : Bytes{0, 5, 7, 255}) {
        SCOPED_TRACE(wrong);
        store(8, {9, 9, 9, 9});
        const Bytes request = access(7, 3, 8, {0, 0, wrong, 1, 2, 3});
        const Response response = run(request);
        EXPECT_EQ(response->code, kWrongChecksum);
        EXPECT_EQ(response->message, "");
        EXPECT_THAT(frameOf(*response), ElementsAre(11, 't', 7, 3, 0x08, 0, 0x04, 0, 0, 0, 6));
        EXPECT_THAT(stored(8, 4), ElementsAre(1, 2, 3, 9));

        store(8, {9, 9, 9, 9});
        expectErrorSent(m_frontEnd, request, kWrongChecksum, "");
        EXPECT_THAT(stored(8, 4), ElementsAre(1, 2, 3, 9));
    }
}

TEST_F(tCmdBinaryTest, NothingMovedIsASuccess) {
    const Bytes before = allStored();
    for (const unsigned int address : {0u, 4u, kScratchBytes - 4}) {
        SCOPED_TRACE(address);
        for (const unsigned char code : Bytes{0, 1, 2, 3, 4, 5})
            expectData(access(code, 0, address), {});
        expectData(access(6, 0, address, {0xAB, 0xCD}), {0xAB, 0xCD, 0});
        expectData(access(7, 0, address, {0xAB, 0xCD, 0}), {0, 0, 0});
    }
    expectData(access(0, 0, kScratchBytes - 1), {});
    expectData(access(1, 0, kScratchBytes - 1, {1, 2}), {});
    EXPECT_EQ(run(access(7, 0, 0, {0, 0, 1}))->code, kWrongChecksum);
    EXPECT_EQ(allStored(), before);
}

TEST_F(tCmdBinaryTest, SlicesPutTogetherAreWhatWasUploaded) {
    const Bytes image = countingUp(10000, 17);
    const unsigned int base = 0x123456;
    for (unsigned int at = 0; at < image.size(); at += 200)
        send(access(1, 200, base + at, {image.begin() + at, image.begin() + at + 200}));
    Bytes fetched;
    for (unsigned int at = 0; at < image.size(); at += 100) {
        const Bytes frame = send(access(4, 25, base - base % 4 + at));
        fetched.insert(fetched.end(), frame.begin() + 8, frame.end());
    }
    EXPECT_EQ(Bytes(fetched.begin() + base % 4, fetched.end()),
              Bytes(image.begin(), image.end() - base % 4));
}

TEST_F(tCmdBinaryTest, TheOperationsCanBeCalledByThemselves) {
    store(0, {1, 2, 3, 4});
    Bytes data;
    EXPECT_EQ(Response(command().read(&data, 2, 2, 0, false, 0x1234))->code, 0u);
    EXPECT_THAT(data, ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(Response(command().read(&data, 1, 2, 1, true, 0x1234))->code, 0u);
    EXPECT_THAT(data, ElementsAre(0x12, 0x34, 5, 2, 3));
    EXPECT_EQ(Response(command().readAscii(&data, 1, 2, 1, true))->code, 0u);
    EXPECT_THAT(data, ElementsAre(5, 2, 3));
    Bytes request = access(7, 2, 1, {0, 0, 9, 4, 5});
    EXPECT_EQ(Response(command().write(&request, &data, 1, true, 0x1234))->code, 0u);
    EXPECT_THAT(data, ElementsAre(0, 0, 9));
    EXPECT_THAT(stored(0, 4), ElementsAre(1, 4, 5, 4));
}
