// The bus manager's requests on a device of the kernel's own I2C driver.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "manager/KernelCalls.h"
#include "platform/DeviceManager.h"
#include "support/Rows.h"

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

using Message = KernelCalls::Message;
using Bytes = std::vector<unsigned char>;
using Numbers = std::vector<std::uint32_t>;

constexpr std::uint32_t kSetBusSpeed = 0x80040502;
constexpr std::uint32_t kSend = 0x80100505;
constexpr std::uint32_t kReceive = 0xC0100506;
constexpr std::uint32_t kSendReceive = 0xC0140507;

constexpr unsigned char kGuard = 0x5A;

auto isMessage(unsigned short address, unsigned short flags, unsigned short length,
               const Bytes& sent = {}) {
    return AllOf(Field("address", &Message::address, address), Field("flags", &Message::flags, flags),
                 Field("length", &Message::length, length), Field("sent", &Message::sent, sent));
}

/// A driver that fills each message that is read with bytes counting up.
int fillReads(i2c_rdwr_ioctl_data& transfer) {
    for (unsigned at = 0; at < transfer.nmsgs; ++at) {
        const i2c_msg& message = transfer.msgs[at];
        for (unsigned byte = 0; (message.flags & I2C_M_RD) != 0 && byte < message.len; ++byte)
            message.buf[byte] = static_cast<unsigned char>(byte + 1);
    }
    return static_cast<int>(transfer.nmsgs);
}

class I2cDriverTest : public ::testing::Test {
protected:
    I2cDriverTest() {
        m_calls.setDriver(fillReads);
        m_room.fill(kGuard);
        EXPECT_TRUE(m_device);
    }

    int send(const Numbers& header, const Bytes& data) {
        return request(kSend, {part(header), {data.data(), data.size()}}, {});
    }

    int receive(Numbers header, std::size_t room) {
        return request(kReceive, {}, {{header.data(), header.size() * 4}, {m_room.data() + 8, room}});
    }

    int sendReceive(Numbers header, const Bytes& data, std::size_t room) {
        return request(kSendReceive, {part(header), {data.data(), data.size()}},
                       {{header.data(), header.size() * 4}, {m_room.data() + 8, room}});
    }

    int request(std::uint32_t command, const std::vector<System::SendPart>& send,
                const std::vector<System::ReplyPart>& reply) {
        return System::requestDevice(m_device.get(), command, send, reply);
    }

    static System::SendPart part(const Numbers& header) { return {header.data(), header.size() * 4}; }

    /// Whether the room holds `count` bytes counting up, between bytes that nobody touched.
    bool roomHolds(std::size_t count) const {
        auto expected = m_room;
        expected.fill(kGuard);
        for (std::size_t at = 0; at < count; ++at)
            expected[8 + at] = static_cast<unsigned char>(at + 1);
        return m_room == expected;
    }

    KernelCalls m_calls;
    System::Descriptor m_device = System::openDevice("/dev/null");
    std::array<unsigned char, 32> m_room{};
};

} // namespace

TEST_F(I2cDriverTest, AWriteIsOneMessage) {
    EXPECT_EQ(send({0x50, 2, 3, 1}, {7, 8, 9}), 0);
    EXPECT_EQ(send({0x7F, 2, 1, 1}, {0xFF}), 0);
    EXPECT_EQ(send({0x50, 2, 2, 1}, {7, 8, 9}), 0) << "the header says how much of it";
    EXPECT_THAT(m_calls.transfers(), ElementsAre(ElementsAre(isMessage(0x50, 0, 3, {7, 8, 9})),
                                                 ElementsAre(isMessage(0x7F, 0, 1, {0xFF})),
                                                 ElementsAre(isMessage(0x50, 0, 2, {7, 8}))));
}

TEST_F(I2cDriverTest, AReadIsOneMessage) {
    EXPECT_EQ(receive({0x51, 2, 4, 1}, 4), 0);
    EXPECT_THAT(m_calls.transfers(), ElementsAre(ElementsAre(isMessage(0x51, I2C_M_RD, 4))));
    EXPECT_TRUE(roomHolds(4));
}

TEST_F(I2cDriverTest, AReadOfLessThanThereIsRoomForLeavesTheRest) {
    EXPECT_EQ(receive({0x51, 2, 3, 1}, 8), 0);
    EXPECT_TRUE(roomHolds(3));
}

TEST_F(I2cDriverTest, ACombinedTransferIsTwoMessagesInOneCall) {
    EXPECT_EQ(sendReceive({0x52, 2, 2, 5, 1}, {0xA0, 0xA1}, 5), 0);
    EXPECT_THAT(m_calls.transfers(), ElementsAre(ElementsAre(isMessage(0x52, 0, 2, {0xA0, 0xA1}),
                                                             isMessage(0x52, I2C_M_RD, 5))));
    EXPECT_TRUE(roomHolds(5));
}

TEST_F(I2cDriverTest, AnAddressOfMoreThanSevenBitsReachesNobody) {
    for (const std::uint32_t address : {0x80u, 0xD0u, 0x150u, 0x10050u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(address);
        EXPECT_EQ(send({address, 2, 1, 1}, {7}), ENXIO);
        EXPECT_EQ(receive({address, 2, 1, 1}, 1), ENXIO);
        EXPECT_EQ(sendReceive({address, 2, 1, 1, 1}, {7}, 1), ENXIO);
    }
    EXPECT_THAT(m_calls.transfers(), IsEmpty());
}

TEST_F(I2cDriverTest, AFailingTransferIsTheResult) {
    for (const int error : {EINTR, ENXIO, EREMOTEIO, EIO, ETIMEDOUT, EAGAIN, EINVAL}) {
        SCOPED_TRACE(error);
        m_calls.setDriver([error](i2c_rdwr_ioctl_data&) {
            errno = error;
            return -1;
        });
        EXPECT_EQ(send({0x50, 2, 1, 1}, {7}), error);
        EXPECT_EQ(receive({0x50, 2, 1, 1}, 1), error);
        EXPECT_EQ(sendReceive({0x50, 2, 1, 1, 1}, {7}, 1), error);
    }
    EXPECT_THAT(m_calls.transfers(), SizeIs(21)) << "none is repeated";
    EXPECT_TRUE(roomHolds(0));
}

TEST_F(I2cDriverTest, ATransferOfWhichOnlyAPartWasDoneIsAFailure) {
    m_calls.setDriver([](i2c_rdwr_ioctl_data&) { return 1; });
    EXPECT_EQ(sendReceive({0x50, 2, 1, 1, 1}, {7}, 1), EIO);
    m_calls.setDriver([](i2c_rdwr_ioctl_data&) { return 0; });
    EXPECT_EQ(send({0x50, 2, 1, 1}, {7}), EIO);
    EXPECT_EQ(receive({0x50, 2, 1, 1}, 1), EIO);
}

TEST_F(I2cDriverTest, WhatTheDriverCannotDoSaysSo) {
    std::uint32_t speed = 400000;
    EXPECT_EQ(System::requestDevice(m_device.get(), kSetBusSpeed, &speed, sizeof speed), EOPNOTSUPP);
    EXPECT_EQ(speed, 400000u);
    EXPECT_EQ(send({0x50, 2, 1, 0}, {7}), EOPNOTSUPP) << "without a stop condition";
    EXPECT_EQ(receive({0x50, 2, 1, 0}, 1), EOPNOTSUPP);
    EXPECT_EQ(sendReceive({0x50, 2, 1, 1, 0}, {7}, 1), EOPNOTSUPP);
    EXPECT_THAT(m_calls.transfers(), IsEmpty());
}

TEST_F(I2cDriverTest, OtherCommandsAreNotTheBuss) {
    for (const std::uint32_t command : {0u, kSend + 1, kReceive & ~0x80000000, kSendReceive + 0x10000}) {
        SCOPED_TRACE(command);
        EXPECT_EQ(request(command, {}, {}), ENOTTY);
    }
    EXPECT_THAT(m_calls.transfers(), IsEmpty());
}

TEST_F(I2cDriverTest, LengthsBeyondThePartsAreRefused) {
    const Bytes data = {1, 2, 3, 4};
    for (const std::uint32_t length : {5u, 0x10004u, 0x80000000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(send({0x50, 2, length, 1}, data), EINVAL);
        EXPECT_EQ(receive({0x50, 2, length, 1}, 4), EINVAL);
        EXPECT_EQ(sendReceive({0x50, 2, length, 4, 1}, data, 4), EINVAL);
        EXPECT_EQ(sendReceive({0x50, 2, 4, length, 1}, data, 4), EINVAL);
    }
    EXPECT_THAT(m_calls.transfers(), IsEmpty());
    EXPECT_TRUE(roomHolds(0));
}

TEST_F(I2cDriverTest, AMessageHoldsNoMoreThanItsLengthCanSay) {
    Bytes room(70000);
    Numbers header = {0x50, 2, 65535, 1};
    EXPECT_EQ(send(header, Bytes(70000)), 0);
    EXPECT_EQ(request(kReceive, {}, {{header.data(), 16}, {room.data(), room.size()}}), 0);
    ASSERT_THAT(m_calls.transfers(), SizeIs(2));
    EXPECT_EQ(m_calls.transfers()[0][0].length, 65535);
    EXPECT_EQ(m_calls.transfers()[1][0].length, 65535);
    header[2] = 65536;
    EXPECT_EQ(send(header, Bytes(70000)), EINVAL);
    EXPECT_EQ(request(kReceive, {}, {{header.data(), 16}, {room.data(), room.size()}}), EINVAL);
    EXPECT_EQ(sendReceive({0x50, 2, 65536, 1, 1}, Bytes(70000), 1), EINVAL);
    EXPECT_THAT(m_calls.transfers(), SizeIs(2));
}

TEST_F(I2cDriverTest, RequestsWithPartsMissingAreRefused) {
    Numbers header = {0x50, 2, 1, 1, 1};
    unsigned char byte = kGuard;
    const System::SendPart whole{header.data(), 20};
    const System::ReplyPart wholeReply{header.data(), 20};
    const System::SendPart data{&byte, 1};
    const System::ReplyPart room{&byte, 1};
    const Rows<std::uint32_t, std::vector<System::SendPart>, std::vector<System::ReplyPart>> rows = {
        {kSend, {}, {}},
        {kSend, {whole}, {}},
        {kSend, {{header.data(), 15}, data}, {}},
        {kReceive, {}, {}},
        {kReceive, {}, {wholeReply}},
        {kReceive, {whole}, {wholeReply}},
        {kReceive, {}, {{header.data(), 15}, room}},
        {kSendReceive, {}, {}},
        {kSendReceive, {whole}, {wholeReply, room}},
        {kSendReceive, {whole, data}, {}},
        {kSendReceive, {whole, data}, {wholeReply}},
        {kSendReceive, {{header.data(), 19}, data}, {wholeReply, room}},
    };
    for (const auto& [command, send, reply] : rows) {
        SCOPED_TRACE(command);
        EXPECT_EQ(request(command, send, reply), EINVAL);
    }
    EXPECT_THAT(m_calls.transfers(), IsEmpty());
    EXPECT_EQ(byte, kGuard);
}
