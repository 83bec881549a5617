// Requests that are refused, in both protocols: they change nothing. It is long as its tables are.
#include <algorithm>

#include "commands/tCmd.h"
#include "support/ScratchFixture.h"

using ::testing::ElementsAre;

namespace {

constexpr unsigned int kMalformed = 0x08001000;
constexpr unsigned int kOutOfBounds = 0x08000100;

constexpr char kNotSupported[] = "Command not supported";
constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kMisaligned[] = "Alignment Error for Start Address";
constexpr char kOutOfLimits[] = "Accessing Memory out of Limits";
constexpr char kTooManyReads[] = "Number of Accessesout of Bounds ";

/// A kind of access.
struct Kind {
    const char* word;       ///< in a line
    unsigned char readCode; ///< in a frame; the code of its writes is the next one
    unsigned int width;     ///< in bytes
};
constexpr Kind k8 = {"8bit", 0, 1};
constexpr Kind k16 = {"16bit", 2, 2};
constexpr Kind k32 = {"32bit", 4, 4};
constexpr Kind kChecked = {"8bitcrc", 6, 1};

Bytes readFrame(const Kind& kind, unsigned char count, unsigned int address) {
    return access(kind.readCode, count, address, Bytes(kind.readCode == kChecked.readCode ? 2 : 0));
}

/// With no data, and with as much as it announces, if a frame has room for that.
std::vector<Bytes> writeFrames(const Kind& kind, unsigned char count, unsigned int address) {
    constexpr std::size_t kRoom = 247;
    const Bytes head(kind.readCode == kChecked.readCode ? 3 : 0);
    const Bytes data(std::min<std::size_t>(count * kind.width, kRoom - head.size()), 0xA5);
    const auto code = static_cast<unsigned char>(kind.readCode + 1);
    return {access(code, count, address, head), access(code, count, address, joined(head, data))};
}

Tokens readLine(const std::string& word, const std::string& count, const std::string& address) {
    return tokens({"memory", "read", word, count, address});
}

/// With a checksum that no other rule would need.
Tokens writeLine(const std::string& word, const std::string& count, const std::string& address,
                 const Bytes& data) {
    Tokens list = lineWithData({"memory", "write", word, count, address}, data);
    list.push_back(token("0"));
    return list;
}

/// With no data, and with as much as any write takes.
std::vector<Tokens> writeLines(const std::string& word, const std::string& count,
                               const std::string& address) {
    return {writeLine(word, count, address, {}), writeLine(word, count, address, Bytes(255, 0xA5))};
}

class tCmdRefusalTest : public CommandTest<tCmd, ScratchFixture> {
protected:
    ~tCmdRefusalTest() override { EXPECT_EQ(allStored(), m_before); }

    /// That reads and writes like this are refused, whatever there is of their data.
    void expectLinesRefused(const std::string& word, const std::string& count,
                            const std::string& address, unsigned int code, const std::string& text) {
        expectRefused(readLine(word, count, address), code, text);
        expectEachRefused(writeLines(word, count, address), code, text);
    }
    /// The same in both protocols.
    void expectAccessRefused(const Kind& kind, unsigned char count, unsigned int address,
                             unsigned int code, const std::string& text) {
        expectRefused(readFrame(kind, count, address), code, text);
        expectEachRefused(writeFrames(kind, count, address), code, text);
        for (const std::string& written : {std::to_string(address), string_format("0x%X", address)})
            expectLinesRefused(kind.word, std::to_string(count), written, code, text);
    }

private:
    const Bytes m_before = allStored();
};

} // namespace

TEST_F(tCmdRefusalTest, LinesOfTooFewFields) {
    const std::string any =
        "Command length error, command must contain at least 5 fields, received fields: ";
    const std::string written =
        "Command length error,write commands must contain at least 6 fields, received fields:";
    const std::string checked =
        "Command length error, write 8bitcrc commands  must contain at least 7 fields,received fields: ";
    expectRefused(RefusedLines{
        {{}, kGenericError, any + "0"},
        {{"memory"}, kGenericError, any + "1"},
        {{"memory", "read"}, kGenericError, any + "2"},
        {{"memory", "read", "8bit"}, kGenericError, any + "3"},
        {{"memory", "read", "8bit", "1"}, kGenericError, any + "4"},
        {{"memory", "write", "8bit", "1"}, kGenericError, any + "4"},
        {{"memory", "wrong", "wrong", "1"}, kGenericError, any + "4"},
        {{"memory", "write", "8bit", "1", "0"}, kGenericError, written + "5"},
        {{"memory", "write", "8bitcrc", "1", "0"}, kGenericError, written + "5"},
        {{"memory", "write", "wrong", "1", "0"}, kGenericError, written + "5"},
        {{"memory", "write", "8bitcrc", "1", "0", "A"}, kGenericError, checked + "6"},
    });
}

TEST_F(tCmdRefusalTest, LinesOfUnknownCombinations) {
    const Rows<const char*, const char*> rows = {
        {"read", "64bit"},  {"read", "8bi"},      {"read", "8bits"},     {"read", "8bitcrcs"},
        {"read", "8BIT"},   {"read", "16bitcrc"}, {"read", "32bitcrc"},  {"read", ""},
        {"Read", "8bit"},   {"reads", "8bit"},    {"rea", "8bit"},       {"", "8bit"},
        {"writes", "8bit"}, {"write", "64bit"},   {"write", "16bitcrc"}, {"write", "8bitcr"},
        {"8bit", "read"},   {"%s%n", "%d"},       {" read", "8bit"},
    };
    for (const auto& [operation, word] : rows)
        expectRefused(
            {"memory", operation, word, "1", "0", "A"}, kGenericError,
            std::string("unknown command combination param1:'") + operation + "', param2: " + word);
}

TEST_F(tCmdRefusalTest, FramesWithCodesBeyondTheTable) {
    expectEachRefused<Bytes>({access(8, 1, 0),
                              access(9, 1, 0),
                              access(0x80, 1, 0),
                              access(0xFF, 255, 0xFFFFFFFF),
                              {0x04, 't', 8, 0},
                              {0x03, 't', 8},
                              {0x02, 't'}},
                             kMalformed, kNotSupported);
    expectNothingRefused(kMalformed, kNotSupported);
}

TEST_F(tCmdRefusalTest, FramesOfReadsOfAnotherLength) {
    for (const unsigned char code : Bytes{0, 2, 4})
        expectEachRefused<Bytes>({{0x03, 't', code},
                                  {0x04, 't', code, 1},
                                  {0x07, 't', code, 1, 0, 0, 0},
                                  access(code, 1, 0, {0}),
                                  access(code, 1, 0, {0, 0}),
                                  access(code, 255, 0xFFFFFFFF, Bytes(247))},
                                 kMalformed, kInvalidLength);
    expectEachRefused<Bytes>({{0x03, 't', 6},
                              {0x04, 't', 6, 1},
                              access(6, 1, 0),
                              access(6, 1, 0, {0}),
                              access(6, 1, 0, {0, 0, 0})},
                             kMalformed, kInvalidLength);
}

TEST_F(tCmdRefusalTest, FramesOfWritesWithoutAWholeHeader) {
    for (const unsigned char code : Bytes{1, 3, 5, 7})
        expectEachRefused<Bytes>(
            {{0x03, 't', code}, {0x04, 't', code, 0}, {0x07, 't', code, 255, 0xFF, 0xFF, 0xFF}},
            kMalformed, kInvalidLength);
    expectEachRefused<Bytes>({access(7, 0, 0), access(7, 255, 0, {0, 0})}, kMalformed, kInvalidLength);
}

TEST_F(tCmdRefusalTest, TooManyAccesses) {
    const Rows<Kind, unsigned char, const char*> rows = {
        {k8, 245, "[(245*1 => 245) > 244]"},       {k8, 255, "[(255*1 => 255) > 244]"},
        {k16, 123, "[(123*2 => 246) > 244]"},      {k16, 128, "[(128*2 => 256) > 244]"},
        {k16, 255, "[(255*2 => 510) > 244]"},      {k32, 62, "[(62*4 => 248) > 244]"},
        {k32, 64, "[(64*4 => 256) > 244]"},        {k32, 255, "[(255*4 => 1020) > 244]"},
        {kChecked, 245, "[(245*1 => 245) > 244]"},
    };
    const auto expectLines = [this](const char* word, const std::string& count,
                                    const std::string& numbers) {
        for (const char* address : {"0", "-1"}) {
            expectRefused(readLine(word, count, address), kOutOfBounds, kTooManyReads + numbers);
            expectEachRefused(writeLines(word, count, address), kOutOfBounds,
                              "Number of Accesses out of Bounds " + numbers);
        }
    };
    for (const auto& [kind, count, numbers] : rows) {
        for (const unsigned int address : {0u, 0xFFFFFFFFu}) { // before the address is looked at
            expectRefused(readFrame(kind, count, address), kOutOfBounds,
                          std::string(kTooManyReads) + numbers);
            expectEachRefused(writeFrames(kind, count, address), kOutOfBounds,
                              std::string("Number of Accesses outof Bounds ") + numbers);
        }
        expectLines(kind.word, std::to_string(count), numbers);
    }
    for (const auto& [word, count, numbers] :
         Rows<const char*, const char*, const char*>{{"8bit", "-1", "[(255*1 => 255) > 244]"},
                                                     {"8bit", "0x1FF", "[(255*1 => 255) > 244]"},
                                                     {"32bit", "-129", "[(127*4 => 508) > 244]"}})
        expectLines(word, count, numbers);
}

TEST_F(tCmdRefusalTest, AddressesThatAreNoMultipleOfTheWidth) {
    const Rows<Kind, unsigned int> rows = {
        {k16, 1},
        {k16, 3},
        {k16, kScratchBytes - 1},
        {k16, 0xFFFFFFFF},
        {k32, 1},
        {k32, 2},
        {k32, 3},
        {k32, 5},
        {k32, 6},
        {k32, kScratchBytes - 2},
        {k32, 0xFFFFFFFE},
        {k32, 0xFFFFFFFF},
    };
    for (const auto& [kind, address] : rows)
        for (const unsigned char count : Bytes{0, 1})
            expectAccessRefused(kind, count, address, kMalformed, kMisaligned);
    for (const auto& [word, address] : Rows<const char*, const char*>{{"16bit", "-1"},
                                                                      {"16bit", "0x100000000"},
                                                                      {"32bit", "-1"},
                                                                      {"32bit", "0x100000000"},
                                                                      {"32bit", "-2"}})
        for (const char* count : {"0", "1"})
            expectLinesRefused(word, count, address, kMalformed, kMisaligned);
}

TEST_F(tCmdRefusalTest, RangesThatReachTheLastByte) {
    const Rows<Kind, unsigned char, unsigned int> rows = {
        {k8, 1, kScratchBytes - 1},
        {k8, 244, kScratchBytes - 244},
        {k8, 0, kScratchBytes},
        {k16, 1, kScratchBytes - 2},
        {k16, 122, kScratchBytes - 244},
        {k16, 0, kScratchBytes},
        {k32, 1, kScratchBytes - 4},
        {k32, 61, kScratchBytes - 244},
        {k32, 0, kScratchBytes},
        {k8, 244, kScratchBytes - 1},
        {k8, 1, 0x7FFFFFFF},
        {k8, 1, 0x80000000},
        {k8, 1, 0xFFFFFFFF},
        {k8, 244, 0xFFFFFF0C},
        {k8, 244, 0xFFFFFFFF},
        {k16, 1, 0xFFFFFFFE},
        {k16, 122, 0xFFFFFF0C},
        {k16, 3, 0xFFFFFFFE},
        {k32, 1, 0xFFFFFFFC},
        {k32, 61, 0xFFFFFF0C},
        {k32, 3, 0xFFFFFFFC},
    };
    for (const auto& [kind, count, address] : rows) {
        expectAccessRefused(kind, count, address, kOutOfBounds, kOutOfLimits);
        if (kind.width == kChecked.width)
            expectAccessRefused(kChecked, count, address, kOutOfBounds, kOutOfLimits);
    }
    for (const auto& [word, count, address] :
         Rows<const char*, const char*, const char*>{{"8bit", "1", "0x100000000"},
                                                     {"8bitcrc", "1", "0x100000100"},
                                                     {"8bit", "1", "-0x100000000"},
                                                     {"16bit", "1", "-0x100000000"},
                                                     {"8bit", "1", "-1"},
                                                     {"8bit", "0", "-1"},
                                                     {"8bit", "244", "-244"},
                                                     {"8bit", "1", "-2147483648"},
                                                     {"8bitcrc", "2", "-1"},
                                                     {"16bit", "1", "-2"},
                                                     {"32bit", "1", "-4"}})
        expectLinesRefused(word, count, address, kOutOfBounds, kOutOfLimits);
}

TEST_F(tCmdRefusalTest, LinesWhoseDataAreTooShortOrTooLong) {
    const Rows<const char*, const char*, std::size_t, const char*> rows = {
        {"8bit", "1", 0, "[1,255], received: 0"},
        {"8bit", "4", 3, "[4,255], received: 3"},
        {"8bit", "244", 243, "[244,255], received: 243"},
        {"16bit", "2", 3, "[4,255], received: 3"},
        {"32bit", "1", 3, "[4,255], received: 3"},
        {"32bit", "61", 61, "[244,255], received: 61"},
        {"8bitcrc", "2", 1, "[2,255], received: 1"},
        {"8bit", "1", 256, "[1,255], received: 256"},
        {"8bit", "0", 256, "[0,255], received: 256"},
        {"8bit", "4", 259, "[4,255], received: 259"},
        {"8bitcrc", "1", 70000, "[1,255], received: 70000"},
    };
    for (const auto& [word, count, size, numbers] : rows)
        expectRefused(writeLine(word, count, "0", Bytes(size, 0xA5)), kGenericError,
                      std::string("Number of Data Bytes must be in Range ") + numbers);
}

TEST_F(tCmdRefusalTest, FramesOfWritesWithFewerBytesThanAnnounced) {
    const Rows<Bytes, const char*> rows = {
        {access(1, 1, 0), "1 + Commandlength: 8 > Commandlength: 8"},
        {access(1, 5, 0, {1, 2, 3, 4}), "5 + Commandlength: 8 > Commandlength: 12"},
        {access(1, 244, 0, Bytes(243)), "244 + Commandlength: 8 > Commandlength: 251"},
        {access(3, 2, 0, {1, 2, 3}), "4 + Commandlength: 8 > Commandlength: 11"},
        {access(5, 1, 0, {1, 2, 3}), "4 + Commandlength: 8 > Commandlength: 11"},
        {access(7, 2, 0, {0, 0, 1, 1}), "2 + Commandlength: 11 > Commandlength: 12"},
        {access(7, 244, 0, {0, 0, 0}), "244 + Commandlength: 11 > Commandlength: 11"},
    };
    for (const auto& [frame, numbers] : rows)
        expectRefused(frame, kMalformed, std::string("Accesslength: ") + numbers);
}

TEST_F(tCmdRefusalTest, ARefusedOperationLeavesItsDataAsItWas) {
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
        for (const Bytes& request :
             {access(0, 1, 0), access(1, 1, 0, {1}), access(6, 0, 0), access(8, 255, 0), Bytes{2, 't'}})
            expectError(runRequest(*tCmd::getInstance(), request), kOutOfBounds, "Allocation Error");
        refuseScratchMemory(false);
        expectSuccess(*runRequest(*tCmd::getInstance(), access(0, 1, 0)),
                      Bytes{9, 't', 0, 1, 0, 0, 0, 0, 0});
    });
}

TEST(tCmdWithoutBufferTest, NothingLiesWithinTheLimitsUntilThereIsMemory) {
    inFreshProcess([] {
        refuseScratchMemory(true);
        const std::vector<Refusal<Tokens>> rows = {
            {readLine("8bit", "1", "0"), kOutOfBounds, kOutOfLimits},
            {readLine("8bitcrc", "0", "0"), kOutOfBounds, kOutOfLimits},
            {writeLine("8bit", "0", "0", {1}), kOutOfBounds, kOutOfLimits},
            {writeLine("32bit", "1", "2", {1, 2, 3, 4}), kMalformed, kMisaligned},
            {readLine("32bit", "255", "1"), kOutOfBounds,
             std::string(kTooManyReads) + "[(255*4 => 1020) > 244]"},
        };
        for (const Refusal<Tokens>& row : rows)
            expectError(runRequest(*tCmd::getInstance(), row.request), row.code, row.text);
        refuseScratchMemory(false);
        expectSuccess(*runRequest(*tCmd::getInstance(), readLine("8bit", "1", "0")), "hex(00)");
    });
}
