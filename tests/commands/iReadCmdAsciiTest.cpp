// The bus over the ASCII protocol: reads and writes, and its attributes. It is long as its tables are.
#include "commands/iReadCmd.h"

#include <stdexcept>

#include "support/I2cUnit.h"

using ::testing::IsEmpty;

namespace {

using iReadCmdAsciiTest = CommandTest<iReadCmd, I2cUnit>;

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
        m_manager->willAnswer(0, readReply(data));
        expectAnswer(Words{"i2c", "read", "0", count, address}, line);
        const auto size = static_cast<std::uint32_t>(data.size());
        EXPECT_EQ(m_manager->lastRequest(), readRequest(sentAddress, size));
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
    const auto expectSent = [this](const Tokens& list, const Bytes& sent) {
        SCOPED_TRACE(::testing::PrintToString(list));
        m_manager->willAnswer(0, transferReply({0xA1, 0xA2}));
        expectAnswer(list, "i2c hex(A1A2)");
        EXPECT_EQ(m_manager->lastRequest(), transferRequest(0x50, sent, 2));
    };
    const std::vector<std::string> line = {"i2c", "read", "0", "2", "0x50"};
    expectSent(lineWithData(line, {0x10}), {0x10});
    expectSent(lineWithData(line, {0, 1, 0xFF}), {0, 1, 0xFF});
    expectSent(lineWithData(line, counting(255)), counting(255));
}

TEST_F(iReadCmdAsciiTest, OfMoreThanSixTokensNoneIsWritten) {
    m_manager->willAnswer(0, readReply({7}));
    expectAnswer(Words{"i2c", "read", "0", "1", "0x50", "x", "y"}, "i2c hex(07)");
    EXPECT_EQ(m_manager->lastRequest(), readRequest(0x50, 1));
    m_manager->willAnswer(0, readReply({7}));
    Tokens list = lineWithData({"i2c", "read", "0", "1", "0x50"}, Bytes(300));
    list.push_back({});
    expectAnswer(list, "i2c hex(07)");
    EXPECT_EQ(m_manager->lastRequest(), readRequest(0x50, 1));
}

TEST_F(iReadCmdAsciiTest, NoDataAreAWriteOfNoBytes) {
    m_manager->willAnswer(0, transferReply({0xA1}));
    expectAnswer(lineWithData({"i2c", "read", "0", "1", "0x50"}, {}), "i2c hex(A1)");
    EXPECT_EQ(m_manager->lastRequest(), transferRequest(0x50, {}, 1));
}

TEST_F(iReadCmdAsciiTest, TooMuchDataToWriteFirstIsRefusedBehindTheBus) {
    for (const std::size_t size : {256U, 257U, 511U, 65536U, 65537U}) {
        const std::string text =
            "Number of Bytes to write first must be in Range [0,255], received: " + std::to_string(size);
        expectRefused(lineWithData({"i2c", "read", "0", "1", "0x50"}, Bytes(size)), kGenericError, text);
        expectRefused(lineWithData({"i2c", "read", "1", "1", "0x50"}, Bytes(size)), kNoSuchBus,
                      "Bus number 1 is invalid");
    }
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(iReadCmdAsciiTest, AReadNeedsFourParameters) {
    expectRefused(Words{"i2c", "read"}, kGenericError, "Expected at Least 4 Parameter, received: 1");
    expectRefused({"i2c", "read", "9", "999"}, kGenericError,
                  "Expected at Least 4 Parameter, received: 3");
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdAsciiTest, TheCountIsCheckedBeforeTheBus) {
    const Rows<const char*, const char*> rows = {{"0", "0"},
                                                 {"248", "248"},
                                                 {"256", "256"},
                                                 {"257", "257"},
                                                 {"-1", "-1"},
                                                 {"-255", "-255"},
                                                 {"0x101", "257"},
                                                 {"abc", "0"},
                                                 {"", "0"},
                                                 {"65537", "65537"},
                                                 {"4294967297", "2147483647"},
                                                 {"2147483647", "2147483647"}};
    for (const auto& [token, count] : rows) {
        for (const char* bus : {"0", "9"})
            expectRefused({"i2c", "read", bus, token, "0x50"}, kGenericError,
                          std::string("Overflow of allowed Range of Bytes to Read [1,247], "
                                      "should Read: ") +
                              count);
    }
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdAsciiTest, ThereIsOneBus) {
    for (const char* bus : {"1", "2", "0xFF"}) {
        const std::string text =
            "Bus number " + std::to_string(std::stoi(bus, nullptr, 0)) + " is invalid";
        expectRefused({"i2c", "read", bus, "1", "0x50"}, kNoSuchBus, text);
        expectRefused({"i2c", "getattributes", bus, "9"}, kNoSuchBus, text);
        expectRefused({"i2c", "setattributes", bus, "9", "00"}, kNoSuchBus, text);
        expectRefused(lineWithData({"i2c", "write", bus, "0x50"}, {1}), kNoSuchBus, text);
    }
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdAsciiTest, ANumberThatIsNoByteIsNoBus) {
    for (const auto& [bus, number] : Rows<const char*, const char*>{{"256", "256"},
                                                                    {"0x100", "256"},
                                                                    {"-256", "-256"},
                                                                    {"-1", "-1"},
                                                                    {"65536", "65536"},
                                                                    {"0xFFFFFFFF", "-1"},
                                                                    {"0x80000000", "-2147483648"},
                                                                    {"0x100000000", "2147483647"},
                                                                    {"-0x100000000", "-2147483648"}}) {
        const std::string text = std::string("Bus number ") + number + " is invalid";
        expectRefused({"i2c", "read", bus, "1", "0x150"}, kNoSuchBus, text);
        expectRefused({"i2c", "getattributes", bus, "0x100"}, kNoSuchBus, text);
        expectRefused({"i2c", "setattributes", bus, "0x100", ""}, kNoSuchBus, text);
        expectRefused(lineWithData({"i2c", "write", bus, "0x150"}, {}), kNoSuchBus, text);
    }
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdAsciiTest, ANumberThatIsNoByteIsNoSlave) {
    for (const auto& [address, number] : Rows<const char*, const char*>{{"256", "256"},
                                                                        {"0x150", "336"},
                                                                        {"-1", "-1"},
                                                                        {"-176", "-176"},
                                                                        {"0x100000050", "2147483647"}}) {
        const std::string text = std::string("Slave address ") + number + " is invalid";
        expectRefused({"i2c", "read", "0", "1", address}, kGenericError, text);
        expectRefused(lineWithData({"i2c", "write", "0", address}, {1}), kGenericError, text);
        expectRefused(lineWithData({"i2c", "read", "0", "1", address}, {1}), kGenericError, text);
    }
    EXPECT_THAT(m_manager->requests(), IsEmpty());
    m_manager->willAnswer(0, readReply({7}));
    expectAnswer(Words{"i2c", "read", "0", "1", "255"}, "i2c hex(07)"); // the bus may know it
    EXPECT_EQ(m_manager->lastRequest(), readRequest(255, 1));
}

TEST_F(iReadCmdAsciiTest, ANumberThatIsNoByteIsNoAttribute) {
    for (const auto& [id, number] : Rows<const char*, const char*>{{"256", "256"},
                                                                   {"257", "257"},
                                                                   {"-255", "-255"},
                                                                   {"-1", "-1"},
                                                                   {"0x100000001", "2147483647"},
                                                                   {"0xFFFFFFFF", "-1"}}) {
        const std::string text = std::string("Attribute ID ") + number + " is unknown";
        expectRefused({"i2c", "getattributes", "0", id}, kUnknownAttribute, text);
        expectRefused({"i2c", "setattributes", "0", id, "00"}, kUnknownAttribute, text);
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
    expectRefused(lineWithData({"i2c", "write", "0", "0x50"}, {1}), kBusError, kLong);
    comeBack();
    expectAnswer(Words{"i2c", "getattributes", "0", "0"}, "i2c hex(01)");
}

TEST_F(iReadCmdAsciiTest, AttributesAreReadInHexadecimal) {
    expectAnswer(Words{"i2c", "getattributes", "0", "0"}, "i2c hex(01)");
    expectAnswer(Words{"i2c", "getattributes", "0", "1"}, "i2c hex(0064)");
    EXPECT_THAT(m_manager->requests(), IsEmpty());
    expectRefused({"i2c", "getattributes", "0", "2"}, kUnknownAttribute, "Attribute ID 2 is unknown");
    expectRefused({"i2c", "getattributes", "0", "255"}, kUnknownAttribute,
                  "Attribute ID 255 is unknown");
    expectRefused(Words{"i2c", "getattributes"}, kGenericError, "Expected 3 Parameter, received: 1");
    expectRefused({"i2c", "getattributes", "9"}, kGenericError, "Expected 3 Parameter, received: 2");
    expectRefused({"i2c", "getattributes", "9", "0", "0"}, kGenericError,
                  "Expected 3 Parameter, received: 4");
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
        m_manager->willAnswer(0);
        expectAnswer(lineWithData({"i2c", "write", "0", "0x50"}, {1}), "i2c ok");
        EXPECT_EQ(m_manager->lastRequest(), writeRequest(0x50, {1}, stop ? 1 : 0));
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
        m_manager->willAnswer(0);
        expectAnswer(Words{"i2c", "setattributes", "0", "1", value}, "i2c ok");
        EXPECT_EQ(m_manager->lastRequest(), speedRequest(speed));
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
    m_manager->willAnswer(22);
    m_manager->willAnswer(22);
    expectRefused({"i2c", "setattributes", "0", "1", "0190"}, kBusError,
                  "setBusSpeed Error on Device /dev/i2c0: Bad message format, errorcode: 22");
    m_manager->willAnswer(5);
    m_manager->willAnswer(5);
    expectRefused({"i2c", "setattributes", "0", "1", "0190"}, kBusError,
                  "setBusSpeed Error on Device /dev/i2c0: Input/output error, errorcode: 5");
    EXPECT_EQ(busSpeed(), 100000u);
}

TEST_F(iReadCmdAsciiTest, SettingAnAttributeTakesThreeParametersAndAKnownOne) {
    expectRefused(Words{"i2c", "setattributes"}, kGenericError,
                  "Expected at Least 4 Parameter, received: 1");
    expectRefused({"i2c", "setattributes", "9", "0"}, kGenericError,
                  "Expected at Least 4 Parameter, received: 3");
    expectRefused({"i2c", "setattributes", "9", "0", "00", "x"}, kGenericError,
                  "Expected at Least 4 Parameter, received: 5");
    EXPECT_EQ(m_manager->connections(), 0);
    expectRefused({"i2c", "setattributes", "0", "2", "00"}, kUnknownAttribute,
                  "Attribute ID 2 is unknown");
    expectRefused({"i2c", "setattributes", "0", "255", ""}, kUnknownAttribute,
                  "Attribute ID 255 is unknown");
}

TEST_F(iReadCmdAsciiTest, AWriteSendsTheBytesOfItsToken) {
    const auto expectSent = [this](const char* address, unsigned char number, const Bytes& data) {
        SCOPED_TRACE(data.size());
        m_manager->willAnswer(0);
        expectAnswer(lineWithData({"i2c", "write", "0", address}, data), "i2c ok");
        EXPECT_TRUE(m_manager->lastRequest() == writeRequest(number, data));
    };
    expectSent("0x50", 0x50, {7});
    expectSent("80", 80, {0});
    expectSent("0x7F", 127, {0, 0xFF, 0});
    expectSent("0", 0, counting(251));
    expectSent("0x50", 0x50, counting(256));
    expectSent("0x50", 0x50, counting(100000));
    m_manager->willAnswer(0);
    expectSuccess(*run(lineWithData({"i2c", "write", "0", "1"}, {1})), "ok");
}

TEST_F(iReadCmdAsciiTest, AWriteWithoutDataIsAnExceptionThatIsAnsweredAsTheGenericError) {
    const Tokens list = lineWithData({"i2c", "write", "0", "0x50"}, {});
    EXPECT_THROW(run(list), std::out_of_range);
    expectErrorSent(m_frontEnd, list, kGenericError, "Expected Data to write");
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(iReadCmdAsciiTest, AWriteTakesThreeParameters) {
    expectRefused(Words{"i2c", "write"}, kGenericError, "Expected at Least 4 Parameter, received: 1");
    expectRefused({"i2c", "write", "9", "0x50"}, kGenericError,
                  "Expected at Least 4 Parameter, received: 3");
    expectRefused({"i2c", "write", "9", "0x50", "x", "y"}, kGenericError,
                  "Expected at Least 4 Parameter, received: 5");
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdAsciiTest, AFailingTransactionIsToldWithItsTextAndItsCode) {
    const Rows<int, const char*, const char*> rows = {
        {1, "The master is locked by another connection", "Operation not permitted"},
        {5, "The master send failed", "bad slave address/ bad bus speed/ bus is busy"},
        {12, "Insufficient memory", "The master is locked by another connection"},
        {14, "An error occurred while accessing the data buffer", "Bad address"},
        {22, "Bad message format", "Bad message format"},
        {16, "Device or resource busy", "Device or resource busy"},
    };
    for (const auto& [result, write, read] : rows) {
        for (int time = 0; time < 6; ++time)
            m_manager->willAnswer(result);
        const std::string end = ", errorcode: " + std::to_string(result);
        expectRefused(lineWithData({"i2c", "write", "0", "0x50"}, {1}), kBusError,
                      std::string("Write Error on Device /dev/i2c0: ") + write + end);
        expectRefused({"i2c", "read", "0", "3", "0x50"}, kBusError,
                      std::string("Read Error on Device /dev/i2c0: ") + read + end);
        expectRefused(lineWithData({"i2c", "read", "0", "3", "0x50"}, {1}), kBusError,
                      std::string("Transfer Error on Device /dev/i2c0: ") + write + end);
    }
    EXPECT_EQ(m_manager->connections(), 1) << "the bus stays open";
}

TEST_F(iReadCmdAsciiTest, ADataTokenThatTheSocketCannotTakeIsAnErrorAndTheBusGoesOn) {
    expectErrorSent(m_frontEnd, lineWithData({"i2c", "write", "0", "0x50"}, Bytes(8 << 20)), kBusError,
                    "Write Error on Device /dev/i2c0: Message too long, errorcode: 90");
    m_manager->willAnswer(0);
    expectAnswer(lineWithData({"i2c", "write", "0", "0x50"}, {1}), "i2c ok");
}
