// Reading from the bus, and its attributes, over the binary protocol.
#include "commands/IWriteCmd.h"
#include "commands/iReadCmd.h"
#include "support/I2cUnit.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr char kNotInRange[] = "Overflow of allowed Range of Bytes to Read [1,247], should Read: ";
constexpr char kNotRead[] = "Read Error on Device /dev/i2c0: ";
constexpr char kNotTransferred[] = "Transfer Error on Device /dev/i2c0: ";

const Bytes kReadOne = {5, 'i', 0, 1, 0x50};
const Bytes kReadThree = {5, 'i', 0, 3, 0x50};

using iReadCmdBinaryTest = BusTest<iReadCmd>;

} // namespace

TEST_F(iReadCmdBinaryTest, FiveBytesAreAPlainRead) {
    expectExchange(kReadThree, readRequest(0x50, 3), readReply({0xA1, 0xA2, 0xA3}), {0xA1, 0xA2, 0xA3});
}

TEST_F(iReadCmdBinaryTest, MoreBytesAreWrittenFirst) {
    expectExchange(Bytes{6, 'i', 0, 1, 0x50, 0x10}, transferRequest(0x50, {0x10}, 1),
                   transferReply({0xA1}), {0xA1});

    const Bytes most = counting(250);
    m_manager->willAnswer(0, transferReply({0xA1}));
    expectResponse(joined({{255, 'i', 0, 1, 0x7F}, most}), {0xA1});
    EXPECT_EQ(m_manager->lastRequest(), transferRequest(0x7F, most, 1));
}

TEST_F(iReadCmdBinaryTest, UpTo247BytesAreRead) {
    for (const unsigned char count : Bytes{1, 2, 246, 247}) {
        SCOPED_TRACE(int(count));
        const Bytes data = counting(count, 0x80);
        expectExchange(Bytes{5, 'i', 0, count, 0xFF}, readRequest(0xFF, count), readReply(data), data);
    }
}

TEST_F(iReadCmdBinaryTest, WhatTheManagerSendsTooMuchIsDropped) {
    expectExchange(kReadThree, readRequest(0x50, 3), readReply(counting(1000)), {1, 2, 3});
}

TEST_F(iReadCmdBinaryTest, WhatTheManagerDoesNotSendIsAFailure) {
    for (const Bytes& reply : {Bytes{}, Bytes(16, 0xEE), readReply({1}), readReply({1, 2})}) {
        SCOPED_TRACE(reply.size());
        m_manager->willAnswer(0, reply);
        expectErrorSent(m_frontEnd, kReadThree, kBusError,
                        std::string(kNotRead) + "Protocol error, errorcode: 71");
    }
    m_manager->willAnswer(0, transferReply({1, 2}));
    expectErrorSent(m_frontEnd, {6, 'i', 0, 3, 0x50, 9}, kBusError,
                    std::string(kNotTransferred) + "Protocol error, errorcode: 71");
}

TEST_F(iReadCmdBinaryTest, TooShortARequestIsRefused) {
    for (const Bytes& request :
         std::vector<Bytes>{{2, 'i'}, {3, 'i', 0}, {4, 'i', 0, 0}, {4, 'i', 9, 248}})
        expectRefused(request, kGenericError,
                      "Expected at Least 5 Bytes, received: " + std::to_string(request.size()));
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdBinaryTest, TheCountIsCheckedBeforeTheBus) {
    for (const unsigned char bus : Bytes{0, 9}) {
        for (const unsigned char count : Bytes{0, 248, 255})
            expectRefused({5, 'i', bus, count, 0x50}, kGenericError,
                          kNotInRange + std::to_string(count));
    }
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdBinaryTest, ThereIsOneBus) {
    for (const unsigned char bus : Bytes{1, 2, 254})
        expectNoSuchBus({5, 'i', bus, 1, 0x50}, bus);
    for (const unsigned char bus : Bytes{1, 255})
        expectNoSuchBus({5, 'i', 255, bus, 9}, bus);
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdBinaryTest, ABusThatCannotBeOpenedIsTold) {
    removeBus();
    for (const Bytes& request : {kReadOne, Bytes{6, 'i', 0, 1, 0x50, 1}, Bytes{5, 'i', 255, 0, 9}})
        expectRefused(request, kBusError, "Failed to open Bus with Error-Code 2");
    comeBack();
    expectExchange(kReadOne, readRequest(0x50, 1), readReply({7}), {7});
}

TEST_F(iReadCmdBinaryTest, AFailingTransactionIsToldWithItsTextAndItsCode) {
    for (const auto& [result, transfer, read] : kBusFailures) {
        expectFailure(kReadThree, result, std::string(kNotRead) + read);
        expectFailure(Bytes{7, 'i', 0, 3, 0x50, 1, 2}, result, std::string(kNotTransferred) + transfer);
    }
    expectExchange(kReadOne, readRequest(0x50, 1), readReply({7}), {7});
    EXPECT_EQ(m_manager->connections(), 1) << "the bus stays open";
}

TEST_F(iReadCmdBinaryTest, AManagerThatGoesDuringARequestIsToldAndReachedAgain) {
    m_manager->willVanish();
    for (const char* text : {"Broken pipe, errorcode: 32", "No such file or directory, errorcode: 2"})
        expectErrorSent(m_frontEnd, kReadThree, kBusError, std::string(kNotRead) + text);
    comeBack();
    expectExchange(kReadOne, readRequest(0x50, 1), readReply({7}), {7});
}

TEST_F(iReadCmdBinaryTest, AttributesAreReadWithoutAskingTheManager) {
    expectDone({5, 'i', 255, 0, 0}, {1});
    expectDone({5, 'i', 255, 0, 1}, {0x00, 0x64});
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(iReadCmdBinaryTest, AttributesAreWhatWasSetLast) {
    m_manager->willAnswer(0);
    send({7, 'I', 255, 0, 1, 0x01, 0x90});
    send({6, 'I', 255, 0, 0, 0});
    expectDone({5, 'i', 255, 0, 0}, {0});
    expectDone({5, 'i', 255, 0, 1}, {0x01, 0x90});
    expectExchange(kReadOne, readRequest(0x50, 1, 0), readReply({0}), {0});
    expectExchange(Bytes{6, 'i', 0, 1, 0x50, 9}, transferRequest(0x50, {9}, 1, 0), transferReply({0}),
                   {0});
}

TEST_F(iReadCmdBinaryTest, OtherAttributesAreUnknown) {
    for (const unsigned char attribute : Bytes{2, 3, 128, 255})
        expectRefused({5, 'i', 255, 0, attribute}, kUnknownAttribute,
                      "Attribute ID " + std::to_string(attribute) + " is unknown");
}

TEST_F(iReadCmdBinaryTest, ARequestForAnAttributeHasFiveBytes) {
    const Bytes longest = joined({{255, 'i', 255}, Bytes(252, 9)});
    for (const Bytes& request :
         {Bytes{3, 'i', 255}, Bytes{4, 'i', 255, 0}, Bytes{6, 'i', 255, 0, 0, 0}, longest})
        expectRefused(request, kGenericError,
                      "Expect a Command Length of 5 but get " + std::to_string(request.size()));
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(iReadCmdBinaryTest, TheSharedCoresCanBeCalled) {
    Bytes out(2);
    m_manager->willAnswer(0, transferReply({1, 2}));
    EXPECT_EQ(Response(command().readBus(0, 2, 0x50, true, "xy", 2, &out))->code, 0u);
    EXPECT_THAT(out, ElementsAre(1, 2));
    EXPECT_EQ(m_manager->lastRequest(), transferRequest(0x50, {'x', 'y'}, 2));
    for (const unsigned char count : Bytes{0, 248})
        expectError(Response(command().readBus(0, count, 0x50, false, nullptr, 0, &out)), kGenericError,
                    kNotInRange + std::to_string(count));
    out.clear();
    EXPECT_EQ(Response(command().getAttribute(0, 1, &out))->code, 0u);
    EXPECT_THAT(out, ElementsAre(0, 100));
    out = {9, 9, 9};
    EXPECT_EQ(Response(command().getAttribute(0, 0, &out))->code, 0u);
    EXPECT_THAT(out, ElementsAre(1));
}
