// Reading from the bus, and its attributes, over the binary protocol.
#include "commands/IWriteCmd.h"
#include "commands/iReadCmd.h"
#include "support/I2cUnit.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using iReadCmdBinaryTest = CommandTest<iReadCmd, I2cUnit>;

Bytes answerFrame(unsigned char bus, unsigned char count, const Bytes& payload) {
    const auto size = static_cast<unsigned char>(8 + payload.size());
    return joined({{size, 'i', bus, count, 0, 0, 0, 0}, payload});
}

} // namespace

TEST_F(iReadCmdBinaryTest, FiveBytesAreAPlainRead) {
    m_manager->willAnswer(0, readReply({0xA1, 0xA2, 0xA3}));
    expectAnswer({5, 'i', 0, 3, 0x50}, {11, 'i', 0, 3, 0, 0, 0, 0, 0xA1, 0xA2, 0xA3});
    EXPECT_EQ(m_manager->lastRequest(), readRequest(0x50, 3));
}

TEST_F(iReadCmdBinaryTest, MoreBytesAreWrittenFirst) {
    m_manager->willAnswer(0, transferReply({0xA1}));
    expectAnswer({6, 'i', 0, 1, 0x50, 0x10}, {9, 'i', 0, 1, 0, 0, 0, 0, 0xA1});
    EXPECT_EQ(m_manager->lastRequest(), transferRequest(0x50, {0x10}, 1));

    const Bytes most = counting(250);
    m_manager->willAnswer(0, transferReply({0xA1}));
    expectSuccess(*run(joined({{255, 'i', 0, 1, 0x7F}, most})), answerFrame(0, 1, {0xA1}));
    EXPECT_EQ(m_manager->lastRequest(), transferRequest(0x7F, most, 1));
}

TEST_F(iReadCmdBinaryTest, UpTo247BytesAreRead) {
    for (const unsigned char count : Bytes{1, 2, 246, 247}) {
        SCOPED_TRACE(int(count));
        const Bytes data = counting(count, 0x80);
        m_manager->willAnswer(0, readReply(data));
        expectAnswer({5, 'i', 0, count, 0xFF}, answerFrame(0, count, data));
        EXPECT_EQ(m_manager->lastRequest(), readRequest(0xFF, count));
    }
}

TEST_F(iReadCmdBinaryTest, WhatTheManagerSendsTooMuchIsDropped) {
    m_manager->willAnswer(0, readReply(counting(1000)));
    expectAnswer({5, 'i', 0, 3, 0x50}, answerFrame(0, 3, {1, 2, 3}));
}

TEST_F(iReadCmdBinaryTest, WhatTheManagerDoesNotSendIsAFailure) {
    for (const Bytes& reply : {Bytes{}, Bytes(16, 0xEE), readReply({1}), readReply({1, 2})}) {
        SCOPED_TRACE(reply.size());
        m_manager->willAnswer(0, reply);
        expectErrorSent(m_frontEnd, {5, 'i', 0, 3, 0x50}, kBusError,
                        "Read Error on Device /dev/i2c0: Protocol error, errorcode: 71");
    }
    m_manager->willAnswer(0, transferReply({1, 2}));
    expectErrorSent(m_frontEnd, {6, 'i', 0, 3, 0x50, 9}, kBusError,
                    "Transfer Error on Device /dev/i2c0: Protocol error, errorcode: 71");
}

TEST_F(iReadCmdBinaryTest, TooShortARequestIsRefused) {
    expectRefused({2, 'i'}, kGenericError, "Expected at Least 5 Bytes, received: 2");
    expectRefused({3, 'i', 0}, kGenericError, "Expected at Least 5 Bytes, received: 3");
    expectRefused({4, 'i', 0, 0}, kGenericError, "Expected at Least 5 Bytes, received: 4");
    expectRefused({4, 'i', 9, 248}, kGenericError, "Expected at Least 5 Bytes, received: 4");
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdBinaryTest, TheCountIsCheckedBeforeTheBus) {
    for (const unsigned char bus : Bytes{0, 9}) {
        for (const unsigned char count : Bytes{0, 248, 255})
            expectRefused({5, 'i', bus, count, 0x50}, kGenericError,
                          "Overflow of allowed Range of Bytes to Read [1,247], should Read: " +
                              std::to_string(count));
    }
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdBinaryTest, ThereIsOneBus) {
    for (const unsigned char bus : Bytes{1, 2, 254})
        expectRefused({5, 'i', bus, 1, 0x50}, kNoSuchBus,
                      "Bus number " + std::to_string(bus) + " is invalid");
    for (const unsigned char bus : Bytes{1, 255})
        expectRefused({5, 'i', 255, bus, 9}, kNoSuchBus,
                      "Bus number " + std::to_string(bus) + " is invalid");
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdBinaryTest, ABusThatCannotBeOpenedIsTold) {
    removeBus();
    expectRefused({5, 'i', 0, 1, 0x50}, kBusError, "Failed to open Bus with Error-Code 2");
    expectRefused({6, 'i', 0, 1, 0x50, 1}, kBusError, "Failed to open Bus with Error-Code 2");
    expectRefused({5, 'i', 255, 0, 9}, kBusError, "Failed to open Bus with Error-Code 2");
    comeBack();
    m_manager->willAnswer(0, readReply({7}));
    expectAnswer({5, 'i', 0, 1, 0x50}, answerFrame(0, 1, {7}));
}

TEST_F(iReadCmdBinaryTest, AFailingTransactionIsToldWithItsTextAndItsCode) {
    const Rows<int, const char*, const char*> rows = {
        {1, "Operation not permitted", "The master is locked by another connection"},
        {5, "bad slave address/ bad bus speed/ bus is busy", "The master send failed"},
        {12, "The master is locked by another connection", "Insufficient memory"},
        {14, "Bad address", "An error occurred while accessing the data buffer"},
        {22, "Bad message format", "Bad message format"},
        {16, "Device or resource busy", "Device or resource busy"},
        {-1, "Unknown error -1", "Unknown error -1"},
    };
    for (const auto& [result, read, transfer] : rows) {
        for (int time = 0; time < 4; ++time)
            m_manager->willAnswer(result, Bytes(300));
        const std::string end = ", errorcode: " + std::to_string(result);
        expectRefused({5, 'i', 0, 3, 0x50}, kBusError,
                      std::string("Read Error on Device /dev/i2c0: ") + read + end);
        expectRefused({7, 'i', 0, 3, 0x50, 1, 2}, kBusError,
                      std::string("Transfer Error on Device /dev/i2c0: ") + transfer + end);
    }
    m_manager->willAnswer(0, readReply({7}));
    expectAnswer({5, 'i', 0, 1, 0x50}, answerFrame(0, 1, {7}));
    EXPECT_EQ(m_manager->connections(), 1) << "the bus stays open";
}

TEST_F(iReadCmdBinaryTest, AManagerThatGoesDuringARequestIsToldAndReachedAgain) {
    m_manager->willVanish();
    expectErrorSent(m_frontEnd, {5, 'i', 0, 3, 0x50}, kBusError,
                    "Read Error on Device /dev/i2c0: Broken pipe, errorcode: 32");
    expectErrorSent(m_frontEnd, {5, 'i', 0, 3, 0x50}, kBusError,
                    "Read Error on Device /dev/i2c0: No such file or directory, errorcode: 2");
    comeBack();
    m_manager->willAnswer(0, readReply({7}));
    expectAnswer({5, 'i', 0, 1, 0x50}, answerFrame(0, 1, {7}));
}

TEST_F(iReadCmdBinaryTest, AttributesAreReadWithoutAskingTheManager) {
    expectAnswer({5, 'i', 255, 0, 0}, {9, 'i', 255, 0, 0, 0, 0, 0, 1});
    expectAnswer({5, 'i', 255, 0, 1}, {10, 'i', 255, 0, 0, 0, 0, 0, 0x00, 0x64});
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(iReadCmdBinaryTest, AttributesAreWhatWasSetLast) {
    m_manager->willAnswer(0);
    send({7, 'I', 255, 0, 1, 0x01, 0x90});
    send({6, 'I', 255, 0, 0, 0});
    expectAnswer({5, 'i', 255, 0, 0}, {9, 'i', 255, 0, 0, 0, 0, 0, 0});
    expectAnswer({5, 'i', 255, 0, 1}, {10, 'i', 255, 0, 0, 0, 0, 0, 0x01, 0x90});
    m_manager->willAnswer(0, readReply({0}));
    send({5, 'i', 0, 1, 0x50});
    EXPECT_EQ(m_manager->lastRequest(), readRequest(0x50, 1, 0));
    m_manager->willAnswer(0, transferReply({0}));
    send({6, 'i', 0, 1, 0x50, 9});
    EXPECT_EQ(m_manager->lastRequest(), transferRequest(0x50, {9}, 1, 0));
}

TEST_F(iReadCmdBinaryTest, OtherAttributesAreUnknown) {
    for (const unsigned char attribute : Bytes{2, 3, 128, 255})
        expectRefused({5, 'i', 255, 0, attribute}, kUnknownAttribute,
                      "Attribute ID " + std::to_string(attribute) + " is unknown");
}

TEST_F(iReadCmdBinaryTest, ARequestForAnAttributeHasFiveBytes) {
    expectRefused({3, 'i', 255}, kGenericError, "Expect a Command Length of 5 but get 3");
    expectRefused({4, 'i', 255, 0}, kGenericError, "Expect a Command Length of 5 but get 4");
    expectRefused({6, 'i', 255, 0, 0, 0}, kGenericError, "Expect a Command Length of 5 but get 6");
    Bytes longest(255, 9);
    longest[0] = 255;
    longest[1] = 'i';
    longest[2] = 255;
    expectRefused(longest, kGenericError, "Expect a Command Length of 5 but get 255");
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdBinaryTest, TheSharedCoresCanBeCalled) {
    Bytes out(2);
    m_manager->willAnswer(0, transferReply({1, 2}));
    EXPECT_EQ(Response(command().readBus(0, 2, 0x50, true, "xy", 2, &out))->code, 0u);
    EXPECT_THAT(out, ElementsAre(1, 2));
    EXPECT_EQ(m_manager->lastRequest(), transferRequest(0x50, {'x', 'y'}, 2));
    expectError(Response(command().readBus(0, 248, 0x50, false, nullptr, 0, &out)), kGenericError,
                "Overflow of allowed Range of Bytes to Read [1,247], should Read: 248");
    expectError(Response(command().readBus(0, 0, 0x50, false, nullptr, 0, &out)), kGenericError,
                "Overflow of allowed Range of Bytes to Read [1,247], should Read: 0");
    out.clear();
    EXPECT_EQ(Response(command().getAttribute(0, 1, &out))->code, 0u);
    EXPECT_THAT(out, ElementsAre(0, 100));
    out = {9, 9, 9};
    EXPECT_EQ(Response(command().getAttribute(0, 0, &out))->code, 0u);
    EXPECT_THAT(out, ElementsAre(1));
}
