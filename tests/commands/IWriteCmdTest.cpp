// Writing to the bus, and setting its attributes, over the binary protocol.
#include "commands/IWriteCmd.h"
#include "support/I2cUnit.h"

using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

constexpr char kTooFewBytes[] = "Bytes to Write is out of Range of received Bytes";

constexpr char kSpeedNotSet[] = "setBusSpeed Error on Device /dev/i2c0: ";

using IWriteCmdTest = BusTest<IWriteCmd>;

/// A write of `count` bytes, of which `data` are there.
Bytes writing(unsigned char bus, unsigned char count, const Bytes& data) {
    return joined({{static_cast<unsigned char>(4 + data.size()), 'I', bus, count}, data});
}

const Bytes kWriting = writing(0, 1, {0x50});

} // namespace

TEST_F(IWriteCmdTest, HasNoAsciiForm) {
    expectError(run(Tokens{}), kGenericError, "IWrite is implemented in i2c");
    expectError(run(tokens({"i2c", "write", "0", "1", "x"})), kGenericError,
                "IWrite is implemented in i2c");
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(IWriteCmdTest, TheAddressIsSentAsTheFirstByteToo) {
    expectExchange(Bytes{6, 'I', 0, 2, 0x50, 0xA1}, writeRequest(0x50, {0x50, 0xA1}));
    expectExchange(Bytes{5, 'I', 0, 1, 0xFF}, writeRequest(0xFF, {0xFF}));
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
        expectExchange(writing(0, count, data), writeRequest(0x20, data));
    }
}

TEST_F(IWriteCmdTest, BytesBeyondTheCountAreNotWritten) {
    expectExchange(writing(0, 2, counting(9, 0x20)), writeRequest(0x20, {0x20, 0x21}));
}

TEST_F(IWriteCmdTest, TooShortARequestIsRefused) {
    for (const Bytes& request :
         std::vector<Bytes>{{2, 'I'}, {3, 'I', 0}, {4, 'I', 0, 1}, {3, 'I', 255}, {4, 'I', 255, 9}})
        expectRefused(request, kGenericError,
                      "Expect at least 5 Bytes, received: " + std::to_string(request.size()));
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
        expectNoSuchBus(writing(bus, 1, {0x50}), bus);
    for (const unsigned char bus : Bytes{1, 255})
        expectNoSuchBus({5, 'I', 255, bus, 9}, bus);
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(IWriteCmdTest, ABusThatCannotBeOpenedIsTold) {
    removeBus();
    constexpr char kMissing[] = "Open Error for /dev/i2c0: No such file or directory 2, errorcode: 2";
    expectRefused(kWriting, kBusError, kMissing);
    expectRefused({5, 'I', 255, 0, 9}, kBusError, kMissing);
    comeBack();
    expectExchange(kWriting, writeRequest(0x50, {0x50}));
}

TEST_F(IWriteCmdTest, AFailingWriteIsToldWithItsTextAndItsCode) {
    for (const auto& [result, text, textOfReads] : kBusFailures)
        expectFailure(kWriting, result, std::string("Write Error on Device /dev/i2c0: ") + text);
    EXPECT_EQ(m_manager->connections(), 1) << "the bus stays open";
}

TEST_F(IWriteCmdTest, AManagerThatGoesDuringARequestIsToldAndReachedAgain) {
    m_manager->willVanish();
    expectErrorSent(m_frontEnd, kWriting, kBusError,
                    "Write Error on Device /dev/i2c0: Broken pipe, errorcode: 32");
    expectErrorSent(m_frontEnd, {7, 'I', 255, 0, 1, 0, 100}, kSpeedError,
                    std::string(kSpeedNotSet) + "No such file or directory, errorcode: 2");
    comeBack();
    expectExchange(kWriting, writeRequest(0x50, {0x50}));
}

TEST_F(IWriteCmdTest, TheStopConditionIsSwitchedAndStaysSo) {
    for (const unsigned char value : Bytes{0, 1, 0}) {
        SCOPED_TRACE(int(value));
        expectDone({6, 'I', 255, 0, 0, value});
        EXPECT_EQ(stopCondition(), value == 1);
        for (const int result : {0, 5, 0}) {
            m_manager->willAnswer(result);
            send(kWriting);
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
    for (const auto& [high, low, speed] :
         Rows<unsigned char, unsigned char, unsigned>{{0x01, 0x90, 400000}, {0x00, 0x64, 100000}}) {
        expectExchange(Bytes{7, 'I', 255, 0, 1, high, low}, speedRequest(speed));
        EXPECT_EQ(busSpeed(), speed);
    }
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
    for (const auto& [result, text] :
         Rows<int, const char*>{{22, "Bad message format"}, {5, "Input/output error"}})
        expectFailure(Bytes{7, 'I', 255, 0, 1, 0x01, 0x90}, result, std::string(kSpeedNotSet) + text,
                      kSpeedError);
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
