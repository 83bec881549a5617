// Writing to the bus, and setting its attributes, over the binary protocol.
#include "commands/IWriteCmd.h"
#include "support/I2cUnit.h"

using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

constexpr char kTooFewBytes[] = "Bytes to Write is out of Range of received Bytes";

using IWriteCmdTest = CommandTest<IWriteCmd, I2cUnit>;

/// A write of `count` bytes, of which `data` are there.
Bytes writing(unsigned char bus, unsigned char count, const Bytes& data) {
    return joined({{static_cast<unsigned char>(4 + data.size()), 'I', bus, count}, data});
}

} // namespace

TEST_F(IWriteCmdTest, HasNoAsciiForm) {
    expectError(run(Tokens{}), kGenericError, "IWrite is implemented in i2c");
    expectError(run(tokens({"i2c", "write", "0", "1", "x"})), kGenericError,
                "IWrite is implemented in i2c");
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(IWriteCmdTest, TheAddressIsSentAsTheFirstByteToo) {
    m_manager->willAnswer(0);
    expectAnswer({6, 'I', 0, 2, 0x50, 0xA1}, {8, 'I', 0, 2, 0, 0, 0, 0});
    EXPECT_EQ(m_manager->lastRequest(), writeRequest(0x50, {0x50, 0xA1}));
    m_manager->willAnswer(0);
    expectAnswer({5, 'I', 0, 1, 0xFF}, {8, 'I', 0, 1, 0, 0, 0, 0});
    EXPECT_EQ(m_manager->lastRequest(), writeRequest(0xFF, {0xFF}));
}

TEST_F(IWriteCmdTest, SuccessIsAResponseWithoutPayload) {
    m_manager->willAnswer(0);
    const Response written = run({5, 'I', 0, 1, 0x50});
    EXPECT_EQ(written->code, 0u);
    EXPECT_EQ(written->protocol, 't');
    const Response set = run({6, 'I', 255, 0, 0, 1});
    EXPECT_EQ(set->code, 0u);
    EXPECT_EQ(set->protocol, 't');
}

TEST_F(IWriteCmdTest, UpTo251BytesAreWritten) {
    for (const unsigned char count : Bytes{1, 2, 250, 251}) {
        SCOPED_TRACE(int(count));
        const Bytes data = counting(count, 0x20);
        m_manager->willAnswer(0);
        expectAnswer(writing(0, count, data), {8, 'I', 0, count, 0, 0, 0, 0});
        EXPECT_EQ(m_manager->lastRequest(), writeRequest(0x20, data));
    }
}

TEST_F(IWriteCmdTest, BytesBeyondTheCountAreNotWritten) {
    m_manager->willAnswer(0);
    expectAnswer(writing(0, 2, counting(9, 0x20)), {8, 'I', 0, 2, 0, 0, 0, 0});
    EXPECT_EQ(m_manager->lastRequest(), writeRequest(0x20, {0x20, 0x21}));
}

TEST_F(IWriteCmdTest, TooShortARequestIsRefused) {
    expectRefused({2, 'I'}, kGenericError, "Expect at least 5 Bytes, received: 2");
    expectRefused({3, 'I', 0}, kGenericError, "Expect at least 5 Bytes, received: 3");
    expectRefused({4, 'I', 0, 1}, kGenericError, "Expect at least 5 Bytes, received: 4");
    expectRefused({3, 'I', 255}, kGenericError, "Expect at least 5 Bytes, received: 3");
    expectRefused({4, 'I', 255, 9}, kGenericError, "Expect at least 5 Bytes, received: 4");
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(IWriteCmdTest, TheCountIsCheckedBeforeTheBus) {
    for (const unsigned char bus : Bytes{0, 9}) {
        for (const unsigned char count : Bytes{0, 252, 253, 255})
            for (const std::size_t there : {1U, 251U})
                expectRefused(writing(bus, count, Bytes(there)), kGenericError,
                              "Number of to by written Bytes must be in Range [1,250] but is " +
                                  std::to_string(count));
        expectRefused(writing(bus, 2, Bytes(1)), kGenericError, kTooFewBytes);
        expectRefused(writing(bus, 251, Bytes(250)), kGenericError, kTooFewBytes);
        expectRefused(writing(bus, 251, Bytes(1)), kGenericError, kTooFewBytes);
    }
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(IWriteCmdTest, ThereIsOneBus) {
    for (const unsigned char bus : Bytes{1, 2, 254})
        expectRefused(writing(bus, 1, {0x50}), kNoSuchBus,
                      "Bus number " + std::to_string(bus) + " is invalid");
    for (const unsigned char bus : Bytes{1, 255})
        expectRefused({5, 'I', 255, bus, 9}, kNoSuchBus,
                      "Bus number " + std::to_string(bus) + " is invalid");
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(IWriteCmdTest, ABusThatCannotBeOpenedIsTold) {
    removeBus();
    constexpr char kMissing[] = "Open Error for /dev/i2c0: No such file or directory 2, errorcode: 2";
    expectRefused(writing(0, 1, {0x50}), kBusError, kMissing);
    expectRefused({5, 'I', 255, 0, 9}, kBusError, kMissing);
    comeBack();
    m_manager->willAnswer(0);
    expectAnswer(writing(0, 1, {0x50}), {8, 'I', 0, 1, 0, 0, 0, 0});
}

TEST_F(IWriteCmdTest, AFailingWriteIsToldWithItsTextAndItsCode) {
    const Rows<int, const char*> rows = {
        {1, "The master is locked by another connection, errorcode: 1"},
        {5, "The master send failed, errorcode: 5"},
        {12, "Insufficient memory, errorcode: 12"},
        {14, "An error occurred while accessing the data buffer, errorcode: 14"},
        {22, "Bad message format, errorcode: 22"},
        {16, "Device or resource busy, errorcode: 16"},
        {-1, "Unknown error -1, errorcode: -1"},
    };
    for (const auto& [result, text] : rows) {
        m_manager->willAnswer(result);
        m_manager->willAnswer(result);
        expectRefused(writing(0, 1, {0x50}), kBusError,
                      std::string("Write Error on Device /dev/i2c0: ") + text);
    }
    EXPECT_EQ(m_manager->connections(), 1) << "the bus stays open";
}

TEST_F(IWriteCmdTest, AManagerThatGoesDuringARequestIsToldAndReachedAgain) {
    m_manager->willVanish();
    expectErrorSent(m_frontEnd, writing(0, 1, {0x50}), kBusError,
                    "Write Error on Device /dev/i2c0: Broken pipe, errorcode: 32");
    expectErrorSent(m_frontEnd, {7, 'I', 255, 0, 1, 0, 100}, kSpeedError,
                    "setBusSpeed Error on Device /dev/i2c0: No such file or directory, errorcode: 2");
    comeBack();
    m_manager->willAnswer(0);
    expectAnswer(writing(0, 1, {0x50}), {8, 'I', 0, 1, 0, 0, 0, 0});
}

TEST_F(IWriteCmdTest, TheStopConditionIsSwitchedAndStaysSo) {
    for (const unsigned char value : Bytes{0, 1, 0}) {
        SCOPED_TRACE(int(value));
        expectAnswer({6, 'I', 255, 0, 0, value}, {8, 'I', 255, 0, 0, 0, 0, 0});
        EXPECT_EQ(stopCondition(), value == 1);
        for (const int result : {0, 5, 0}) {
            m_manager->willAnswer(result);
            send(writing(0, 1, {0x50}));
            EXPECT_EQ(m_manager->lastRequest(), writeRequest(0x50, {0x50}, value));
        }
    }
    EXPECT_THAT(m_manager->requests(), SizeIs(9));
    for (const unsigned char value : Bytes{2, 3, 255})
        expectRefused({6, 'I', 255, 0, 0, value}, kGenericError,
                      "Attribute Value " + std::to_string(value) + " for AttributeId 0 is unknown");
    EXPECT_FALSE(stopCondition());
}

TEST_F(IWriteCmdTest, TheSpeedIsSetInKiloHertz) {
    m_manager->willAnswer(0);
    expectAnswer({7, 'I', 255, 0, 1, 0x01, 0x90}, {8, 'I', 255, 0, 0, 0, 0, 0});
    EXPECT_EQ(m_manager->lastRequest(), speedRequest(400000));
    EXPECT_EQ(busSpeed(), 400000u);
    m_manager->willAnswer(0);
    expectAnswer({7, 'I', 255, 0, 1, 0x00, 0x64}, {8, 'I', 255, 0, 0, 0, 0, 0});
    EXPECT_EQ(m_manager->lastRequest(), speedRequest(100000));
    EXPECT_EQ(busSpeed(), 100000u);
}

TEST_F(IWriteCmdTest, OtherSpeedsAreRefused) {
    for (const int speed : {0, 1, 99, 101, 200, 399, 401, 25600, 65535})
        expectRefused({7, 'I', 255, 0, 1, static_cast<unsigned char>(speed >> 8),
                       static_cast<unsigned char>(speed)},
                      kSpeedError, "Clockspeed of " + std::to_string(speed) + " is not supported");
    EXPECT_EQ(busSpeed(), 100000u);
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(IWriteCmdTest, ASpeedThatTheBusDoesNotTakeHasTheSpeedsCode) {
    m_manager->willAnswer(22);
    m_manager->willAnswer(22);
    expectRefused({7, 'I', 255, 0, 1, 0x01, 0x90}, kSpeedError,
                  "setBusSpeed Error on Device /dev/i2c0: Bad message format, errorcode: 22");
    m_manager->willAnswer(5);
    m_manager->willAnswer(5);
    expectRefused({7, 'I', 255, 0, 1, 0x01, 0x90}, kSpeedError,
                  "setBusSpeed Error on Device /dev/i2c0: Input/output error, errorcode: 5");
    EXPECT_EQ(busSpeed(), 100000u);
}

TEST_F(IWriteCmdTest, EachAttributeHasItsLength) {
    expectRefused({5, 'I', 255, 0, 1}, kGenericError, "Expect 7 Bytes, received: 5");
    expectRefused({6, 'I', 255, 0, 1, 0}, kGenericError, "Expect 7 Bytes, received: 6");
    expectRefused({8, 'I', 255, 0, 1, 0, 100, 0}, kGenericError, "Expect 7 Bytes, received: 8");
    expectRefused({5, 'I', 255, 0, 0}, kGenericError, "Expect at 6 Bytes, received: 5");
    expectRefused({7, 'I', 255, 0, 0, 0, 0}, kGenericError, "Expect at 6 Bytes, received: 7");
    EXPECT_TRUE(stopCondition());
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(IWriteCmdTest, OtherAttributesAreUnknown) {
    for (const unsigned char attribute : Bytes{2, 3, 255}) {
        const std::string text = "Attribute ID " + std::to_string(attribute) + " is unknown";
        expectRefused({5, 'I', 255, 0, attribute}, kUnknownAttribute, text);
        expectRefused({9, 'I', 255, 0, attribute, 1, 2, 3, 4}, kUnknownAttribute, text);
    }
}
