// The bus over the ASCII protocol: reads and writes, and its attributes.
#include "commands/iReadCmd.h"

#include <stdexcept>

#include "support/I2cUnit.h"

using ::testing::IsEmpty;

namespace {

using iReadCmdAsciiTest = BusTest<iReadCmd>;

const Words kReadOne = {"i2c", "read", "0", "1", "0x50"};
const Words kWrite = {"i2c", "write", "0", "0x50"};

using Numbers = Rows<const char*, const char*>;

/// Numbers that are no byte, though some are one modulo 256, and what they are told as.
const Numbers kNoBytes = {
    {"256", "256"},
    {"0x100", "256"},
    {"257", "257"},
    {"0x101", "257"},
    {"0x150", "336"},
    {"65536", "65536"},
    {"65537", "65537"},
    {"2147483647", "2147483647"},
    {"0x100000000", "2147483647"},
    {"4294967297", "2147483647"},
    {"0x100000050", "2147483647"},
    {"-1", "-1"},
    {"0xFFFFFFFF", "-1"},
    {"-176", "-176"},
    {"-255", "-255"},
    {"-256", "-256"},
    {"0x80000000", "-2147483648"},
    {"-0x100000000", "-2147483648"},
};

Numbers noBytesAnd(const Numbers& more) {
    Numbers all = kNoBytes;
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

} // namespace

TEST_F(iReadCmdAsciiTest, ALineNeedsASubCommandThatIsKnown) {
    expectRefused({"i2c"}, kGenericError, "Expected a subcommand!");
    expectRefused(Tokens{}, kGenericError, "Expected a subcommand!");
    for (const char* word : {"", "rea", "readx", "Read", "%s%n", "getattribute", "WRITE"})
        expectRefused({"i2c", word, "0", "1", "0x50"}, kGenericError,
                      std::string("unknown subcommand '") + word + "'");
    expectRefused({token("i2c"), {'x', 'y'}}, kGenericError, "unknown subcommand 'xy'");
    expectRefused({token("i2c"), {}}, kGenericError, "unknown subcommand ''");
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdAsciiTest, AReadAnswersTheBytesInHexadecimal) {
    const Rows<const char*, const char*, Bytes, unsigned char, const char*> rows = {
        {"1", "0x50", {0xA1}, 0x50, "i2c hex(A1)"},
        {"3", "80", {0, 0x0F, 0xFF}, 0x50, "i2c hex(000FFF)"},
        {"0x2", "0120", {1, 2}, 0x50, "i2c hex(0102)"},
        {"2", "0", {1, 2}, 0, "i2c hex(0102)"},
        {"2", "127", {0, 0}, 127, "i2c hex(0000)"},
    };
    for (const auto& [count, address, data, sentAddress, line] : rows) {
        const auto size = static_cast<std::uint32_t>(data.size());
        expectExchange(Words{"i2c", "read", "0", count, address}, readRequest(sentAddress, size),
                       readReply(data), line);
    }
}

TEST_F(iReadCmdAsciiTest, UpTo247BytesAreRead) {
    m_manager->willAnswer(0, readReply(Bytes(247, 0xAB)));
    std::string digits;
    for (int byte = 0; byte < 247; ++byte)
        digits += "AB";
    expectSuccess(*run(Words{"i2c", "read", "0", "247", "0x50"}), "hex(" + digits + ")");
}

TEST_F(iReadCmdAsciiTest, TheSixthTokenIsWrittenFirst) {
    for (const Bytes& data : {Bytes{0x10}, Bytes{0, 1, 0xFF}, counting(255)})
        expectExchange(lineWithData({"i2c", "read", "0", "2", "0x50"}, data),
                       transferRequest(0x50, data, 2), transferReply({0xA1, 0xA2}), "i2c hex(A1A2)");
}

TEST_F(iReadCmdAsciiTest, OfMoreThanSixTokensNoneIsWritten) {
    Tokens withMore = lineWithData(kReadOne, Bytes(300));
    withMore.push_back({});
    for (const Tokens& line : {tokens({"i2c", "read", "0", "1", "0x50", "x", "y"}), withMore})
        expectExchange(line, readRequest(0x50, 1), readReply({7}), "i2c hex(07)");
}

TEST_F(iReadCmdAsciiTest, NoDataAreAWriteOfNoBytes) {
    expectExchange(lineWithData(kReadOne, {}), transferRequest(0x50, {}, 1), transferReply({0xA1}),
                   "i2c hex(A1)");
}

TEST_F(iReadCmdAsciiTest, TooMuchDataToWriteFirstIsRefusedBehindTheBus) {
    for (const std::size_t size : {256U, 257U, 511U, 65536U, 65537U}) {
        const std::string text =
            "Number of Bytes to write first must be in Range [0,255], received: " + std::to_string(size);
        expectRefused(lineWithData(kReadOne, Bytes(size)), kGenericError, text);
        expectRefused(lineWithData({"i2c", "read", "1", "1", "0x50"}, Bytes(size)), kNoSuchBus,
                      "Bus number 1 is invalid");
    }
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(iReadCmdAsciiTest, EachSubCommandTakesItsNumberOfParameters) {
    const std::string four = "Expected at Least 4 Parameter, received: ";
    const std::string three = "Expected 3 Parameter, received: ";
    expectRefused(RefusedLines{
        {{"i2c", "read"}, kGenericError, four + "1"},
        {{"i2c", "read", "9", "999"}, kGenericError, four + "3"},
        {{"i2c", "write"}, kGenericError, four + "1"},
        {{"i2c", "write", "9", "0x50"}, kGenericError, four + "3"},
        {{"i2c", "write", "9", "0x50", "x", "y"}, kGenericError, four + "5"},
        {{"i2c", "getattributes"}, kGenericError, three + "1"},
        {{"i2c", "getattributes", "9"}, kGenericError, three + "2"},
        {{"i2c", "getattributes", "9", "0", "0"}, kGenericError, three + "4"},
        {{"i2c", "setattributes"}, kGenericError, four + "1"},
        {{"i2c", "setattributes", "9", "0"}, kGenericError, four + "3"},
        {{"i2c", "setattributes", "9", "0", "00", "x"}, kGenericError, four + "5"},
    });
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdAsciiTest, TheCountIsCheckedBeforeTheBus) {
    for (const auto& [token, count] :
         noBytesAnd({{"0", "0"}, {"248", "248"}, {"abc", "0"}, {"", "0"}})) {
        for (const char* bus : {"0", "9"})
            expectRefused({"i2c", "read", bus, token, "0x50"}, kGenericError,
                          std::string("Overflow of allowed Range of Bytes to Read [1,247], "
                                      "should Read: ") +
                              count);
    }
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdAsciiTest, ThereIsOneBus) {
    for (const auto& [bus, number] : noBytesAnd({{"1", "1"}, {"2", "2"}, {"0xFF", "255"}})) {
        const std::string text = std::string("Bus number ") + number + " is invalid";
        // With numbers behind it that are good, and with others: it is looked at first.
        for (const char* slave : {"0x50", "0x150"}) {
            expectRefused({"i2c", "read", bus, "1", slave}, kNoSuchBus, text);
            expectRefused(lineWithData({"i2c", "write", bus, slave}, {1}), kNoSuchBus, text);
            expectRefused(lineWithData({"i2c", "write", bus, slave}, {}), kNoSuchBus, text);
        }
        for (const char* id : {"9", "0x100"}) {
            expectRefused({"i2c", "getattributes", bus, id}, kNoSuchBus, text);
            expectRefused({"i2c", "setattributes", bus, id, "00"}, kNoSuchBus, text);
            expectRefused({"i2c", "setattributes", bus, id, ""}, kNoSuchBus, text);
        }
    }
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdAsciiTest, ANumberThatIsNoByteIsNoSlave) {
    for (const auto& [address, number] : kNoBytes) {
        const std::string text = std::string("Slave address ") + number + " is invalid";
        expectRefused({"i2c", "read", "0", "1", address}, kGenericError, text);
        expectRefused(lineWithData({"i2c", "write", "0", address}, {1}), kGenericError, text);
        expectRefused(lineWithData({"i2c", "read", "0", "1", address}, {1}), kGenericError, text);
    }
    EXPECT_THAT(m_manager->requests(), IsEmpty());
    // The bus may know it.
    expectExchange(Words{"i2c", "read", "0", "1", "255"}, readRequest(255, 1), readReply({7}),
                   "i2c hex(07)");
}

TEST_F(iReadCmdAsciiTest, OtherAttributesAreUnknown) {
    for (const auto& [id, number] : noBytesAnd({{"2", "2"}, {"255", "255"}})) {
        const std::string text = std::string("Attribute ID ") + number + " is unknown";
        expectRefused({"i2c", "getattributes", "0", id}, kUnknownAttribute, text);
        for (const char* value : {"00", ""})
            expectRefused({"i2c", "setattributes", "0", id, value}, kUnknownAttribute, text);
    }
    EXPECT_TRUE(stopCondition());
}

TEST_F(iReadCmdAsciiTest, ABusThatCannotBeOpenedIsTold) {
    removeBus();
    constexpr char kLong[] = "Open Error for /dev/i2c0: No such file or directory 2, errorcode: 2";
    constexpr char kShort[] = "Failed to open Bus with Error-Code 2";
    expectRefused({"i2c", "read", "0", "1", "0x50"}, kBusError, kShort);
    expectRefused({"i2c", "getattributes", "0", "9"}, kBusError, kShort);
    expectRefused({"i2c", "setattributes", "0", "9", "00"}, kBusError, kLong);
    expectRefused(lineWithData(kWrite, {1}), kBusError, kLong);
    comeBack();
    expectAnswer(Words{"i2c", "getattributes", "0", "0"}, "i2c hex(01)");
}

TEST_F(iReadCmdAsciiTest, AttributesAreReadInHexadecimal) {
    expectAnswer(Words{"i2c", "getattributes", "0", "0"}, "i2c hex(01)");
    expectAnswer(Words{"i2c", "getattributes", "0", "1"}, "i2c hex(0064)");
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(iReadCmdAsciiTest, TheStopConditionIsSwitched) {
    const Rows<const char*, bool> rows = {
        {"00", false}, {"01", true}, {"01FF", true}, {"00 01", false}, {"0x01", false}};
    for (const auto& [value, stop] : rows) {
        SCOPED_TRACE(value);
        send(tokens({"i2c", "setattributes", "0", "0", stop ? "00" : "01"}));
        EXPECT_EQ(stopCondition(), !stop);
        expectAnswer(Words{"i2c", "setattributes", "0", "0", value}, "i2c ok");
        EXPECT_EQ(stopCondition(), stop);
        expectAnswer(Words{"i2c", "getattributes", "0", "0"}, stop ? "i2c hex(01)" : "i2c hex(00)");
        expectExchange(lineWithData(kWrite, {1}), writeRequest(0x50, {1}, stop ? 1 : 0), {}, "i2c ok");
    }
    for (const char* value : {"02", "FF", "0200"}) {
        const std::string number = std::to_string(std::stoi(std::string(value, 2), nullptr, 16));
        expectRefused({"i2c", "setattributes", "0", "0", value}, kGenericError,
                      "Attribute Value " + number + " for AttributeId 0 is unknown");
    }
    EXPECT_FALSE(stopCondition());
}

TEST_F(iReadCmdAsciiTest, AStopConditionWithoutItsByteIsRefused) {
    for (const char* value : {"", "1", "0", "zz"})
        expectRefused({"i2c", "setattributes", "0", "0", value}, kGenericError,
                      "Attribute Value for AttributeId 0 is missing");
    EXPECT_TRUE(stopCondition());
}

TEST_F(iReadCmdAsciiTest, TheSpeedIsSetInKiloHertz) {
    for (const auto& [value, speed, answer] :
         Rows<const char*, unsigned, const char*>{{"0190", 400000, "i2c hex(0190)"},
                                                  {"0064", 100000, "i2c hex(0064)"},
                                                  {"01 90 FF", 400000, "i2c hex(0190)"}}) {
        SCOPED_TRACE(value);
        expectExchange(Words{"i2c", "setattributes", "0", "1", value}, speedRequest(speed), {},
                       "i2c ok");
        expectAnswer(Words{"i2c", "getattributes", "0", "1"}, answer);
    }
}

TEST_F(iReadCmdAsciiTest, OtherSpeedsAreRefusedAndMissingBytesAreZero) {
    const Rows<const char*, const char*> rows = {{"00C8", "200"},   {"0000", "0"},   {"", "0"},
                                                 {"01", "256"},     {"64", "25600"}, {"190", "6400"},
                                                 {"FFFF", "65535"}, {"0065", "101"}, {"0063", "99"},
                                                 {"018F", "399"},   {"0191", "401"}};
    for (const auto& [value, speed] : rows)
        expectRefused({"i2c", "setattributes", "0", "1", value}, kSpeedError,
                      std::string("Clockspeed of ") + speed + " is not supported");
    EXPECT_EQ(busSpeed(), 100000u);
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(iReadCmdAsciiTest, ASpeedThatTheBusDoesNotTakeIsTold) {
    for (const auto& [result, text] :
         Rows<int, const char*>{{22, "Bad message format"}, {5, "Input/output error"}})
        expectFailure(Words{"i2c", "setattributes", "0", "1", "0190"}, result,
                      std::string("setBusSpeed Error on Device /dev/i2c0: ") + text);
    EXPECT_EQ(busSpeed(), 100000u);
}

TEST_F(iReadCmdAsciiTest, AWriteSendsTheBytesOfItsToken) {
    const Rows<const char*, unsigned char, Bytes> rows = {
        {"0x50", 0x50, {7}},           {"80", 80, {0}},
        {"0x7F", 127, {0, 0xFF, 0}},   {"0", 0, counting(251)},
        {"0x50", 0x50, counting(256)}, {"0x50", 0x50, counting(100000)}};
    for (const auto& [address, number, data] : rows)
        expectExchange(lineWithData({"i2c", "write", "0", address}, data), writeRequest(number, data),
                       {}, "i2c ok");
    m_manager->willAnswer(0);
    expectSuccess(*run(lineWithData({"i2c", "write", "0", "1"}, {1})), "ok");
}

TEST_F(iReadCmdAsciiTest, AWriteWithoutDataIsAnExceptionThatIsAnsweredAsTheGenericError) {
    const Tokens list = lineWithData(kWrite, {});
    EXPECT_THROW(run(list), std::out_of_range);
    expectErrorSent(m_frontEnd, list, kGenericError, "Expected Data to write");
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(iReadCmdAsciiTest, AFailingTransactionIsToldWithItsTextAndItsCode) {
    for (const auto& [result, write, read] : kBusFailures) {
        expectFailure(lineWithData(kWrite, {1}), result,
                      std::string("Write Error on Device /dev/i2c0: ") + write);
        expectFailure(kReadOne, result, std::string("Read Error on Device /dev/i2c0: ") + read);
        expectFailure(lineWithData(kReadOne, {1}), result,
                      std::string("Transfer Error on Device /dev/i2c0: ") + write);
    }
    EXPECT_EQ(m_manager->connections(), 1) << "the bus stays open";
}

TEST_F(iReadCmdAsciiTest, ADataTokenThatTheSocketCannotTakeIsAnErrorAndTheBusGoesOn) {
    expectErrorSent(m_frontEnd, lineWithData(kWrite, Bytes(8 << 20)), kBusError,
                    "Write Error on Device /dev/i2c0: Message too long, errorcode: 90");
    expectExchange(lineWithData(kWrite, {1}), writeRequest(0x50, {1}), {}, "i2c ok");
}
