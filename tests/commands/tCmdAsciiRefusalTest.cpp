// Lines that are refused: they change nothing.
#include "commands/tCmd.h"
#include "support/ScratchFixture.h"

namespace {

constexpr unsigned int kMalformed = 0x08001000;
constexpr unsigned int kOutOfBounds = 0x08000100;

constexpr char kMisaligned[] = "Alignment Error for Start Address";
constexpr char kOutOfLimits[] = "Accessing Memory out of Limits";

using Refusals = std::vector<Refusal<Tokens>>;

class tCmdAsciiRefusalTest : public CommandTest<tCmd, ScratchFixture> {
protected:
    void expectRefused(const Refusals& rows) {
        const Bytes before = allStored();
        CommandTest::expectRefused(rows);
        EXPECT_EQ(allStored(), before);
    }
};

Tokens read(const char* keyword, const char* count, const char* address) {
    return tokens({"memory", "read", keyword, count, address});
}

/// With more data than any write takes; a checksum that no other rule would need.
Tokens write(const char* keyword, const char* count, const char* address,
             const Bytes& data = Bytes(255, 0xA5)) {
    Tokens list = tokens({"memory", "write", keyword, count, address});
    list.push_back(dataToken(data));
    list.push_back(token("0"));
    return list;
}

} // namespace

TEST_F(tCmdAsciiRefusalTest, TooFewFields) {
    const std::string any =
        "Command length error, command must contain at least 5 fields, received fields: ";
    const std::string written =
        "Command length error,write commands must contain at least 6 fields, received fields:";
    const std::string checked =
        "Command length error, write 8bitcrc commands  must contain at least 7 fields,received fields: ";
    expectRefused({
        {tokens({"memory"}), kGenericError, any + "1"},
        {tokens({"memory", "read"}), kGenericError, any + "2"},
        {tokens({"memory", "read", "8bit"}), kGenericError, any + "3"},
        {tokens({"memory", "read", "8bit", "1"}), kGenericError, any + "4"},
        {tokens({"memory", "write", "8bit", "1"}), kGenericError, any + "4"},
        {tokens({"memory", "wrong", "wrong", "1"}), kGenericError, any + "4"},
        {tokens({"memory", "write", "8bit", "1", "0"}), kGenericError, written + "5"},
        {tokens({"memory", "write", "8bitcrc", "1", "0"}), kGenericError, written + "5"},
        {tokens({"memory", "write", "wrong", "1", "0"}), kGenericError, written + "5"},
        {tokens({"memory", "write", "8bitcrc", "1", "0", "A"}), kGenericError, checked + "6"},
    });
    CommandTest::expectRefused(Tokens{}, kGenericError, any + "0");
}

TEST_F(tCmdAsciiRefusalTest, UnknownCombinations) {
    const Rows<const char*, const char*> rows = {
        {"read", "64bit"},  {"read", "8bi"},      {"read", "8bits"},     {"read", "8bitcrcs"},
        {"read", "8BIT"},   {"read", "16bitcrc"}, {"read", "32bitcrc"},  {"read", ""},
        {"Read", "8bit"},   {"reads", "8bit"},    {"rea", "8bit"},       {"", "8bit"},
        {"writes", "8bit"}, {"write", "64bit"},   {"write", "16bitcrc"}, {"write", "8bitcr"},
        {"8bit", "read"},   {"%s%n", "%d"},       {" read", "8bit"},
    };
    Refusals refusals;
    for (const auto& [operation, keyword] : rows)
        refusals.push_back(
            {tokens({"memory", operation, keyword, "1", "0", "A"}), kGenericError,
             std::string("unknown command combination param1:'") + operation + "', param2: " + keyword});
    expectRefused(refusals);
}

TEST_F(tCmdAsciiRefusalTest, TooManyAccesses) {
    const std::string reads = "Number of Accessesout of Bounds ";
    const std::string writes = "Number of Accesses out of Bounds ";
    const Rows<const char*, const char*, const char*> rows = {
        {"8bit", "245", "[(245*1 => 245) > 244]"},   {"8bit", "-1", "[(255*1 => 255) > 244]"},
        {"8bit", "0x1FF", "[(255*1 => 255) > 244]"}, {"16bit", "123", "[(123*2 => 246) > 244]"},
        {"16bit", "128", "[(128*2 => 256) > 244]"},  {"16bit", "255", "[(255*2 => 510) > 244]"},
        {"32bit", "62", "[(62*4 => 248) > 244]"},    {"32bit", "64", "[(64*4 => 256) > 244]"},
        {"32bit", "255", "[(255*4 => 1020) > 244]"}, {"8bitcrc", "245", "[(245*1 => 245) > 244]"},
        {"32bit", "-129", "[(127*4 => 508) > 244]"},
    };
    Refusals refusals;
    for (const auto& [keyword, count, numbers] : rows) {
        refusals.push_back({read(keyword, count, "0"), kOutOfBounds, reads + numbers});
        refusals.push_back({write(keyword, count, "0"), kOutOfBounds, writes + numbers});
    }
    expectRefused(refusals);
}

TEST_F(tCmdAsciiRefusalTest, AddressesThatAreNoMultipleOfTheWidth) {
    Refusals refusals;
    for (const auto& [keyword, address] :
         {std::pair{"16bit", "1"}, std::pair{"16bit", "-1"}, std::pair{"16bit", "0x7FFFFFF"},
          std::pair{"32bit", "1"}, std::pair{"32bit", "2"}, std::pair{"32bit", "3"},
          std::pair{"16bit", "0x100000000"}, std::pair{"32bit", "0x100000000"}, std::pair{"32bit", "-2"},
          std::pair{"32bit", "0xFFFFFFFE"}}) {
        refusals.push_back({read(keyword, "1", address), kMalformed, kMisaligned});
        refusals.push_back({write(keyword, "1", address), kMalformed, kMisaligned});
        refusals.push_back({read(keyword, "0", address), kMalformed, kMisaligned});
    }
    expectRefused(refusals);
}

TEST_F(tCmdAsciiRefusalTest, RangesThatReachTheLastByte) {
    const Rows<const char*, const char*, const char*> rows = {
        {"8bit", "1", "134217727"},
        {"8bit", "244", "0x7FFFF0C"},
        {"8bit", "0", "134217728"},
        {"8bit", "1", "0x100000000"},
        {"8bitcrc", "1", "0x100000100"},
        {"8bit", "1", "-0x100000000"},
        {"16bit", "1", "-0x100000000"},
        {"8bit", "1", "0xFFFFFFFF"},
        {"8bit", "244", "0xFFFFFF0C"},
        {"8bit", "1", "-1"},
        {"8bit", "0", "-1"},
        {"8bit", "244", "-244"},
        {"8bit", "1", "0x7FFFFFFF"},
        {"8bit", "1", "-2147483648"},
        {"8bitcrc", "1", "134217727"},
        {"8bitcrc", "2", "-1"},
        {"16bit", "1", "134217726"},
        {"16bit", "1", "-2"},
        {"16bit", "122", "0xFFFFFF0C"},
        {"32bit", "1", "134217724"},
        {"32bit", "1", "-4"},
        {"32bit", "61", "0xFFFFFF0C"},
    };
    Refusals refusals;
    for (const auto& [keyword, count, address] : rows) {
        refusals.push_back({read(keyword, count, address), kOutOfBounds, kOutOfLimits});
        refusals.push_back({write(keyword, count, address), kOutOfBounds, kOutOfLimits});
    }
    expectRefused(refusals);
}

TEST_F(tCmdAsciiRefusalTest, DataThatIsTooShortOrTooLong) {
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
    Refusals refusals;
    for (const auto& [keyword, count, size, numbers] : rows)
        refusals.push_back({write(keyword, count, "0", Bytes(size, 0xA5)), kGenericError,
                            std::string("Number of Data Bytes must be in Range ") + numbers});
    expectRefused(refusals);
}

TEST_F(tCmdAsciiRefusalTest, OfSeveralFaultsTheFirstIsTold) {
    expectRefused({
        {read("32bit", "255", "-1"), kOutOfBounds,
         "Number of Accessesout of Bounds [(255*4 => 1020) > 244]"},
        {write("32bit", "255", "-1", {}), kOutOfBounds,
         "Number of Accesses out of Bounds [(255*4 => 1020) > 244]"},
        {write("32bit", "1", "-1", {}), kMalformed, kMisaligned},
        {write("32bit", "1", "-4", {}), kOutOfBounds, kOutOfLimits},
    });
}

TEST(tCmdWithoutBufferTest, NothingLiesWithinTheLimitsUntilThereIsMemory) {
    inFreshProcess([] {
        refuseScratchMemory(true);
        const Refusals rows = {
            {read("8bit", "1", "0"), kOutOfBounds, kOutOfLimits},
            {read("8bitcrc", "0", "0"), kOutOfBounds, kOutOfLimits},
            {write("8bit", "0", "0"), kOutOfBounds, kOutOfLimits},
            {write("32bit", "1", "2"), kMalformed, kMisaligned},
            {read("32bit", "255", "1"), kOutOfBounds,
             "Number of Accessesout of Bounds [(255*4 => 1020) > 244]"},
        };
        for (const Refusal<Tokens>& row : rows)
            expectError(runRequest(*tCmd::getInstance(), row.request), row.code, row.text);
        refuseScratchMemory(false);
        Tokens list = read("8bit", "1", "0");
        EXPECT_EQ(answerOf(*Response(tCmd::getInstance()->process(list))), "hex(00)");
    });
}
