// Binary requests that are refused: they change nothing.
#include "commands/tCmd.h"
#include "support/ScratchFixture.h"

using ::testing::ElementsAre;

namespace {

constexpr unsigned int kMalformed = 0x08001000;
constexpr unsigned int kOutOfBounds = 0x08000100;

constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kMisaligned[] = "Alignment Error for Start Address";
constexpr char kOutOfLimits[] = "Accessing Memory out of Limits";

/// A request with everything that follows the address.
Bytes access(unsigned char code, unsigned char count, unsigned int address, const Bytes& rest = {}) {
    Bytes request = joined(joined({0, 't', code, count}, bigEndian(address)), rest);
    request[0] = static_cast<unsigned char>(request.size());
    return request;
}

class tCmdBinaryRefusalTest : public CommandTest<tCmd, ScratchFixture> {
protected:
    void expectRefused(const RefusedFrames& rows) {
        const Bytes before = allStored();
        CommandTest::expectRefused(rows);
        EXPECT_EQ(allStored(), before);
    }
};

} // namespace

TEST_F(tCmdBinaryRefusalTest, CodesBeyondTheTable) {
    const std::string text = "Command not supported";
    expectRefused({{access(8, 1, 0), kMalformed, text},
                   {access(9, 1, 0), kMalformed, text},
                   {access(0x80, 1, 0), kMalformed, text},
                   {access(0xFF, 255, 0xFFFFFFFF), kMalformed, text},
                   {{0x04, 't', 8, 0}, kMalformed, text}});
}

TEST_F(tCmdBinaryRefusalTest, ReadsOfAnotherLength) {
    RefusedFrames rows;
    for (const unsigned char code : Bytes{0, 2, 4}) {
        rows.push_back({{0x04, 't', code, 1}, kMalformed, kInvalidLength});
        rows.push_back({{0x07, 't', code, 1, 0, 0, 0}, kMalformed, kInvalidLength});
        rows.push_back({access(code, 1, 0, {0}), kMalformed, kInvalidLength});
        rows.push_back({access(code, 1, 0, {0, 0}), kMalformed, kInvalidLength});
        rows.push_back({access(code, 255, 0xFFFFFFFF, Bytes(247)), kMalformed, kInvalidLength});
    }
    rows.push_back({{0x04, 't', 6, 1}, kMalformed, kInvalidLength});
    rows.push_back({access(6, 1, 0), kMalformed, kInvalidLength});
    rows.push_back({access(6, 1, 0, {0}), kMalformed, kInvalidLength});
    rows.push_back({access(6, 1, 0, {0, 0, 0}), kMalformed, kInvalidLength});
    expectRefused(rows);
}

TEST_F(tCmdBinaryRefusalTest, WritesWithoutAWholeHeader) {
    RefusedFrames rows;
    for (const unsigned char code : Bytes{1, 3, 5, 7}) {
        rows.push_back({{0x04, 't', code, 0}, kMalformed, kInvalidLength});
        rows.push_back({{0x07, 't', code, 255, 0xFF, 0xFF, 0xFF}, kMalformed, kInvalidLength});
    }
    rows.push_back({access(7, 0, 0), kMalformed, kInvalidLength});
    rows.push_back({access(7, 255, 0, {0, 0}), kMalformed, kInvalidLength});
    expectRefused(rows);
}

TEST_F(tCmdBinaryRefusalTest, TooManyAccesses) {
    const std::string read = "Number of Accessesout of Bounds ";
    const std::string write = "Number of Accesses outof Bounds ";
    expectRefused({
        {access(0, 245, 0), kOutOfBounds, read + "[(245*1 => 245) > 244]"},
        {access(0, 255, 0), kOutOfBounds, read + "[(255*1 => 255) > 244]"},
        {access(2, 123, 0), kOutOfBounds, read + "[(123*2 => 246) > 244]"},
        {access(2, 255, 0), kOutOfBounds, read + "[(255*2 => 510) > 244]"},
        {access(2, 128, 0), kOutOfBounds, read + "[(128*2 => 256) > 244]"},
        {access(4, 62, 0), kOutOfBounds, read + "[(62*4 => 248) > 244]"},
        {access(4, 64, 0), kOutOfBounds, read + "[(64*4 => 256) > 244]"},
        {access(4, 255, 0), kOutOfBounds, read + "[(255*4 => 1020) > 244]"},
        {access(6, 245, 0, {0, 0}), kOutOfBounds, read + "[(245*1 => 245) > 244]"},
        {access(1, 245, 0, Bytes(245)), kOutOfBounds, write + "[(245*1 => 245) > 244]"},
        {access(1, 255, 0), kOutOfBounds, write + "[(255*1 => 255) > 244]"},
        {access(3, 123, 0, Bytes(246)), kOutOfBounds, write + "[(123*2 => 246) > 244]"},
        {access(3, 128, 0), kOutOfBounds, write + "[(128*2 => 256) > 244]"},
        {access(5, 62, 0), kOutOfBounds, write + "[(62*4 => 248) > 244]"},
        {access(5, 255, 0), kOutOfBounds, write + "[(255*4 => 1020) > 244]"},
        {access(7, 245, 0, Bytes(244)), kOutOfBounds, write + "[(245*1 => 245) > 244]"},
    });
}

TEST_F(tCmdBinaryRefusalTest, AddressesThatAreNoMultipleOfTheWidth) {
    RefusedFrames rows;
    for (const unsigned int address : {1u, 3u, kScratchBytes - 1, 0xFFFFFFFFu}) {
        rows.push_back({access(2, 1, address), kMalformed, kMisaligned});
        rows.push_back({access(3, 1, address, {1, 2}), kMalformed, kMisaligned});
    }
    for (const unsigned int address : {1u, 2u, 3u, 5u, 6u, kScratchBytes - 2, 0xFFFFFFFEu}) {
        rows.push_back({access(4, 1, address), kMalformed, kMisaligned});
        rows.push_back({access(5, 1, address, {1, 2, 3, 4}), kMalformed, kMisaligned});
    }
    rows.push_back({access(2, 0, 1), kMalformed, kMisaligned});
    rows.push_back({access(5, 1, 1), kMalformed, kMisaligned}); // before the missing data is missed
    expectRefused(rows);
}

TEST_F(tCmdBinaryRefusalTest, RangesThatReachTheLastByte) {
    const Rows<unsigned char, unsigned char, unsigned int> rows = {
        {1, 1, kScratchBytes - 1},
        {1, 244, kScratchBytes - 244},
        {1, 0, kScratchBytes},
        {2, 1, kScratchBytes - 2},
        {2, 122, kScratchBytes - 244},
        {2, 0, kScratchBytes},
        {4, 1, kScratchBytes - 4},
        {4, 61, kScratchBytes - 244},
        {4, 0, kScratchBytes},
        {1, 244, kScratchBytes - 1},
        {1, 1, 0x7FFFFFFF},
        {1, 1, 0x80000000},
        {1, 1, 0xFFFFFFFF},
        {1, 244, 0xFFFFFF0C},
        {1, 244, 0xFFFFFFFF},
        {2, 1, 0xFFFFFFFE},
        {2, 122, 0xFFFFFF0C},
        {2, 3, 0xFFFFFFFE},
        {4, 1, 0xFFFFFFFC},
        {4, 61, 0xFFFFFF0C},
        {4, 3, 0xFFFFFFFC},
    };
    RefusedFrames refusals;
    for (const auto& [width, count, address] : rows) {
        const auto read = static_cast<unsigned char>(width / 2 * 2);
        const auto write = static_cast<unsigned char>(read + 1);
        const Bytes data(std::size_t{width} * count, 0xA5);
        refusals.push_back({access(read, count, address), kOutOfBounds, kOutOfLimits});
        refusals.push_back({access(write, count, address, data), kOutOfBounds, kOutOfLimits});
        refusals.push_back({access(write, count, address), kOutOfBounds, kOutOfLimits});
        if (width != 1)
            continue;
        refusals.push_back({access(6, count, address, {0, 0}), kOutOfBounds, kOutOfLimits});
        refusals.push_back(
            {access(7, count, address, joined({0, 0, 0}, data)), kOutOfBounds, kOutOfLimits});
    }
    expectRefused(refusals);
}

TEST_F(tCmdBinaryRefusalTest, WritesWithFewerBytesThanAnnounced) {
    const auto text = [](const char* numbers) { return string_format("Accesslength: %s", numbers); };
    expectRefused({
        {access(1, 1, 0), kMalformed, text("1 + Commandlength: 8 > Commandlength: 8")},
        {access(1, 5, 0, {1, 2, 3, 4}), kMalformed, text("5 + Commandlength: 8 > Commandlength: 12")},
        {access(1, 244, 0, Bytes(243)), kMalformed, text("244 + Commandlength: 8 > Commandlength: 251")},
        {access(3, 2, 0, {1, 2, 3}), kMalformed, text("4 + Commandlength: 8 > Commandlength: 11")},
        {access(5, 1, 0, {1, 2, 3}), kMalformed, text("4 + Commandlength: 8 > Commandlength: 11")},
        {access(7, 2, 0, {0, 0, 1, 1}), kMalformed, text("2 + Commandlength: 11 > Commandlength: 12")},
        {access(7, 244, 0, {0, 0, 0}), kMalformed, text("244 + Commandlength: 11 > Commandlength: 11")},
    });
}

TEST_F(tCmdBinaryRefusalTest, OfSeveralFaultsTheFirstIsTold) {
    expectRefused({
        {access(4, 255, 0xFFFFFFFF), kOutOfBounds,
         "Number of Accessesout of Bounds [(255*4 => 1020) > 244]"},
        {access(5, 255, 0xFFFFFFFF), kOutOfBounds,
         "Number of Accesses outof Bounds [(255*4 => 1020) > 244]"},
        {access(4, 1, 0xFFFFFFFF), kMalformed, kMisaligned},
        {access(5, 1, 0xFFFFFFFF), kMalformed, kMisaligned},
        {access(5, 1, 0xFFFFFFFC), kOutOfBounds, kOutOfLimits},
    });
}

TEST_F(tCmdBinaryRefusalTest, RequestsTooShortToBeAnswered) {
    const Rows<Bytes, const char*> rows = {
        {{0x02, 't'}, "Command not supported"}, {{0x03, 't', 0}, kInvalidLength},
        {{0x03, 't', 1}, kInvalidLength},       {{0x03, 't', 6}, kInvalidLength},
        {{0x03, 't', 7}, kInvalidLength},       {{0x03, 't', 8}, "Command not supported"}};
    for (const auto& [request, text] : rows)
        CommandTest::expectRefused(request, kMalformed, text);
    Bytes none;
    expectError(Response(command().process(&none)), kMalformed, "Command not supported");
    expectError(Response(command().process(static_cast<Bytes*>(nullptr))), kMalformed,
                "Command not supported");
}

TEST_F(tCmdBinaryRefusalTest, ARefusedOperationLeavesItsDataAsItWas) {
    Bytes data = {7, 7};
    Bytes request = access(7, 1, kScratchBytes, {0, 0, 0, 0});
    EXPECT_EQ(Response(command().read(&data, 1, 1, kScratchBytes, true, 1))->code, kOutOfBounds);
    EXPECT_EQ(Response(command().readAscii(&data, 2, 1, 1, false))->code, kMalformed);
    EXPECT_EQ(Response(command().write(&request, &data, 1, true, 1))->code, kOutOfBounds);
    EXPECT_THAT(data, ElementsAre(7, 7));
}

TEST(tCmdWithoutBufferTest, EveryBinaryRequestIsRefusedUntilThereIsMemory) {
    inFreshProcess([] {
        refuseScratchMemory(true);
        for (Bytes request : {access(0, 1, 0), access(1, 1, 0, {1}), access(6, 0, 0), access(8, 255, 0),
                              Bytes{2, 't'}}) {
            const Response response(tCmd::getInstance()->process(&request));
            expectError(response, kOutOfBounds, "Allocation Error");
        }
        refuseScratchMemory(false);
        Bytes request = access(0, 1, 0);
        const Response response(tCmd::getInstance()->process(&request));
        EXPECT_EQ(frameOf(*response), (Bytes{9, 't', 0, 1, 0, 0, 0, 0, 0}));
    });
}
