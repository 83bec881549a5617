#include "devices/I2cBus.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "support/I2cPackets.h"
#include "support/Rows.h"

namespace headunit_test {
namespace {

using headunit::Eeprom;
using headunit::I2cBus;
using headunit::PortExpander;
using headunit::TemperatureSensor;

constexpr std::uint32_t kEeprom = 0x50;
constexpr std::uint32_t kSensor = 0x48;
constexpr std::uint32_t kExpander = 0x20;

class I2cBusTest : public testing::Test {
protected:
    std::string ask(const std::string& packet) { return m_bus.answer(&m_client, packet); }
    std::string askAsOther(const std::string& packet) { return m_bus.answer(&m_other, packet); }

    I2cBus m_bus;
    int m_client = 0;
    int m_other = 0;
};

std::string result(int number) {
    return numbers({static_cast<std::uint32_t>(number)});
}

TEST_F(I2cBusTest, TakesPacketsAsTheyGoOverTheSocket) {
    const std::string request(
        "\x07\x05\x14\xC0\x15\x00\x00\x00\x16\x00\x00\x00\x00\x00\x00\x00"
        "\x50\x00\x00\x00\x02\x00\x00\x00\x01\x00\x00\x00\x02\x00\x00\x00"
        "\x01\x00\x00\x00\x10",
        37);
    ASSERT_TRUE(m_bus.eeprom.store(0x10, "hi"));
    EXPECT_EQ(ask(request),
              std::string("\x00\x00\x00\x00"
                          "\x50\x00\x00\x00\x02\x00\x00\x00\x01\x00\x00\x00\x02\x00\x00\x00"
                          "\x01\x00\x00\x00hi",
                          26));
}

TEST_F(I2cBusTest, AReceiveGivesTheHeaderAndThenTheBytes) {
    ASSERT_TRUE(m_bus.eeprom.store(0, "abc"));
    EXPECT_EQ(ask(receivePacket(kEeprom, 3)), result(0) + numbers({kEeprom, 2, 3, 1}) + "abc");
    EXPECT_EQ(ask(receivePacket(kEeprom, 0)), result(0) + numbers({kEeprom, 2, 0, 1}));
}

TEST_F(I2cBusTest, ASendIsAnsweredWithTheResultOnly) {
    EXPECT_EQ(ask(sendPacket(kEeprom, std::string("\x05xyz"))), result(0));
    EXPECT_EQ(m_bus.eeprom.content().substr(4, 5), "\xFFxyz\xFF");
    EXPECT_EQ(ask(sendPacket(kEeprom, "")), result(0)) << "an address without data";
}

TEST_F(I2cBusTest, KnowsTwoSpeeds) {
    EXPECT_EQ(m_bus.speed(), 100000u);
    EXPECT_EQ(ask(speedPacket(400000)), result(0));
    EXPECT_EQ(m_bus.speed(), 400000u);
    for (const std::uint32_t speed : {0u, 1u, 99999u, 200000u, 1000000u, 0xFFFFFFFFu})
        EXPECT_EQ(ask(speedPacket(speed)), result(EINVAL)) << speed;
    EXPECT_EQ(m_bus.speed(), 400000u);
    EXPECT_EQ(ask(speedPacket(100000)), result(0));
    EXPECT_EQ(m_bus.speed(), 100000u);
}

TEST_F(I2cBusTest, RefusesAddressesWithoutAChip) {
    for (const std::uint32_t address : {0x00u, 0x21u, 0x51u, 0x7Fu, 0x80u, 0xA0u, 0x150u, 0xFFFFFFFFu}) {
        EXPECT_EQ(ask(sendPacket(address, "x")), result(EIO)) << address;
        EXPECT_EQ(ask(receivePacket(address, 1)), result(EIO)) << address;
        EXPECT_EQ(ask(combinedPacket(address, "x", 1)), result(EIO)) << address;
    }
    EXPECT_EQ(m_bus.requests(), 24u);
    EXPECT_EQ(m_bus.refused(), 24u);
}

TEST_F(I2cBusTest, RefusesAChipThatWasTakenOff) {
    ASSERT_EQ(m_bus.findChip("toaster"), nullptr);
    ASSERT_NE(m_bus.findChip("sensor"), nullptr);
    m_bus.findChip("sensor")->present = false;
    EXPECT_EQ(ask(receivePacket(kSensor, 2)), result(EIO));
    EXPECT_EQ(ask(receivePacket(kExpander, 1)).substr(0, 4), result(0));
    m_bus.findChip("sensor")->present = true;
    EXPECT_EQ(ask(receivePacket(kSensor, 2)).substr(0, 4), result(0));
}

TEST_F(I2cBusTest, ATransferWithoutStopKeepsTheBus) {
    EXPECT_EQ(ask(sendPacket(kEeprom, std::string(1, '\0'), false)), result(0));
    EXPECT_TRUE(m_bus.isHeld());
    EXPECT_EQ(askAsOther(receivePacket(kEeprom, 1)), result(EPERM));
    EXPECT_EQ(askAsOther(sendPacket(kEeprom, "x")), result(EPERM));
    EXPECT_EQ(askAsOther(combinedPacket(kEeprom, "x", 1)), result(EPERM));
    EXPECT_EQ(askAsOther(speedPacket(400000)), result(EPERM));
    EXPECT_EQ(ask(speedPacket(400000)), result(0)) << "the holder may";
    EXPECT_EQ(ask(combinedPacket(kEeprom, "x", 1, false)).substr(0, 4), result(0));
    EXPECT_TRUE(m_bus.isHeld());
    EXPECT_EQ(ask(receivePacket(kEeprom, 1)).substr(0, 4), result(0));
    EXPECT_FALSE(m_bus.isHeld());
    EXPECT_EQ(askAsOther(receivePacket(kEeprom, 1)).substr(0, 4), result(0));
}

TEST_F(I2cBusTest, IsFreeAfterItsHolderLeftOrMetNobody) {
    ask(receivePacket(kEeprom, 1, false));
    m_bus.left(&m_other);
    EXPECT_TRUE(m_bus.isHeld());
    m_bus.left(&m_client);
    EXPECT_FALSE(m_bus.isHeld());
    ask(receivePacket(kEeprom, 1, false));
    EXPECT_EQ(ask(receivePacket(0x11, 1, false)), result(EIO));
    EXPECT_FALSE(m_bus.isHeld());
}

TEST_F(I2cBusTest, GivesAnyResultOnDemandAndDoesNothingThen) {
    m_bus.orderResult(12, 2);
    EXPECT_EQ(ask(sendPacket(kEeprom, std::string("\0x", 2))), result(12));
    EXPECT_EQ(ask(receivePacket(kEeprom, 1)), result(12));
    EXPECT_EQ(ask(receivePacket(kEeprom, 1)), result(0) + numbers({kEeprom, 2, 1, 1}) + "\xFF");
    m_bus.orderResult(-7, 1000);
    EXPECT_EQ(ask("nonsense"), result(-7));
    EXPECT_EQ(ask(speedPacket(400000)), std::string("\xF9\xFF\xFF\xFF"));
    m_bus.orderResult(0, 1);
    EXPECT_EQ(ask(receivePacket(kEeprom, 1)), result(0)) << "success, but not a byte";
    EXPECT_EQ(m_bus.speed(), 100000u);
    m_bus.orderResult(5, 9);
    m_bus.orderResult(0, 0);
    EXPECT_EQ(ask(speedPacket(400000)), result(0)) << "the order was taken back";
}

TEST_F(I2cBusTest, DoesNotKnowOtherCommands) {
    for (const std::uint32_t command : {0u, 1u, 0x80040503u, 0x00040502u, 0xFFFFFFFFu})
        EXPECT_EQ(ask(requestPacket(command, numbers({100000}), 100)), result(ENOTTY)) << command;
}

struct MalformedCase {
    const char* title;
    std::string packet;
    int result = EINVAL;
};

void PrintTo(const MalformedCase& row, std::ostream* out) {
    *out << row.title;
}

class Malformed : public I2cBusTest, public testing::WithParamInterface<MalformedCase> {};

TEST_P(Malformed, IsRefusedAndChangesNothing) {
    EXPECT_EQ(ask(GetParam().packet), result(GetParam().result));
    EXPECT_EQ(m_bus.eeprom.content(), std::string(Eeprom::kSize, '\xFF'));
    EXPECT_EQ(m_bus.speed(), 100000u);
    EXPECT_FALSE(m_bus.isHeld());
    EXPECT_EQ(m_bus.refused(), 1u);
}

const std::string kWrite = numbers({kEeprom, 2, 2, 0}) + std::string("\0x", 2);

INSTANTIATE_TEST_SUITE_P(
    Packets, Malformed,
    testing::Values(
        MalformedCase{"empty", ""}, MalformedCase{"oneByte", "x"},
        MalformedCase{"shortHead", numbers({0x80100505, 0, 0})},
        MalformedCase{"nothingSent", requestPacket(0x80100505, "")},
        MalformedCase{"lessThanSaid", numbers({0x80040502, 4, 0, 0}) + "abc"},
        MalformedCase{"moreThanSaid", numbers({0x80040502, 4, 0, 0}) + numbers({400000}) + "x"},
        MalformedCase{"hugeSize", numbers({0x80100505, 0xFFFFFFFF, 0, 0}) + kWrite},
        MalformedCase{"reservedNumber", numbers({0x80040502, 4, 0, 1, 400000})},
        MalformedCase{"shortSpeed", requestPacket(0x80040502, "abc")},
        MalformedCase{"longSpeed", requestPacket(0x80040502, numbers({400000, 0}))},
        MalformedCase{"shortHeader", requestPacket(0x80100505, numbers({kEeprom, 2, 0}))},
        MalformedCase{"shortCombinedHeader", requestPacket(0xC0140507, numbers({kEeprom, 2, 0, 0}), 20)},
        MalformedCase{"otherFormat", requestPacket(0x80100505, numbers({kEeprom, 1, 2, 0}) + "ab")},
        MalformedCase{"lengthTooShort", requestPacket(0x80100505, numbers({kEeprom, 2, 1, 0}) + "ab")},
        MalformedCase{"lengthTooLong", requestPacket(0x80100505, numbers({kEeprom, 2, 3, 0}) + "ab")},
        MalformedCase{"lengthWraps",
                      requestPacket(0x80100505, numbers({kEeprom, 2, 0xFFFFFFF2, 0}) + "ab")},
        MalformedCase{"dataToReceive", requestPacket(0xC0100506, numbers({kEeprom, 2, 1, 0}) + "a", 17)},
        MalformedCase{"noRoom", requestPacket(0xC0100506, numbers({kEeprom, 2, 2, 0}), 17)},
        MalformedCase{"noRoomForHeader", requestPacket(0xC0100506, numbers({kEeprom, 2, 0, 0}), 15)},
        MalformedCase{"roomWraps", requestPacket(0xC0100506, numbers({kEeprom, 2, 0xFFFFFFFF, 0}), 100)},
        MalformedCase{"combinedNoRoom",
                      requestPacket(0xC0140507, numbers({kEeprom, 2, 2, 2, 0}) + "ab", 21)},
        MalformedCase{"tooMuchToReceive",
                      requestPacket(0xC0100506, numbers({kEeprom, 2, 65537, 0}), 0xFFFFFFFF), ENOMEM},
        MalformedCase{"tooMuchToSend", sendPacket(kEeprom, std::string(65537, 'x')), ENOMEM}),
    titleOf);

TEST(Eeprom, WritesFromTheFirstByteOnAndWraps) {
    Eeprom memory;
    memory.write(
        std::string("\xFE"
                    "abcd"));
    EXPECT_EQ(memory.content().substr(0xFE), "ab");
    EXPECT_EQ(memory.content().substr(0, 3), "cd\xFF");
    EXPECT_EQ(memory.pointer(), 2);
}

TEST(Eeprom, ReadsOnFromThePointerAndWraps) {
    Eeprom memory;
    ASSERT_TRUE(memory.store(0xFF, "z"));
    ASSERT_TRUE(memory.store(0, "ab"));
    memory.write("\xFF");
    EXPECT_EQ(memory.read(2), "za");
    EXPECT_EQ(memory.read(1), "b");
    EXPECT_EQ(memory.read(256).substr(253), "zab");
    memory.write("");
    EXPECT_EQ(memory.pointer(), 2);
}

TEST(Eeprom, StoresNothingBeyondItsEnd) {
    Eeprom memory;
    EXPECT_TRUE(memory.store(0, std::string(256, 'x')));
    EXPECT_TRUE(memory.store(256, ""));
    EXPECT_FALSE(memory.store(255, "ab"));
    EXPECT_FALSE(memory.store(257, ""));
    EXPECT_EQ(memory.content(), std::string(256, 'x'));
}

struct TemperatureCase {
    double degrees;
    std::string bytes;
};

class Temperature : public testing::TestWithParam<TemperatureCase> {};

TEST_P(Temperature, IsTheUpperTwelveBits) {
    TemperatureSensor sensor;
    ASSERT_TRUE(sensor.setTemperature(GetParam().degrees));
    EXPECT_EQ(sensor.read(2), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Values, Temperature,
                         testing::Values(TemperatureCase{0, std::string("\0\0", 2)},
                                         TemperatureCase{25, std::string("\x19\x00", 2)},
                                         TemperatureCase{0.0625, std::string("\x00\x10", 2)},
                                         TemperatureCase{0.1, std::string("\x00\x20", 2)},
                                         TemperatureCase{-0.0625, "\xFF\xF0"},
                                         TemperatureCase{-25, std::string("\xE7\x00", 2)},
                                         TemperatureCase{-55, std::string("\xC9\x00", 2)},
                                         TemperatureCase{125, std::string("\x7D\x00", 2)}));

TEST(TemperatureSensor, RefusesWhatItCannotMeasure) {
    TemperatureSensor sensor;
    EXPECT_FALSE(sensor.setTemperature(-55.1));
    EXPECT_FALSE(sensor.setTemperature(125.1));
    EXPECT_EQ(sensor.temperature(), 25);
    EXPECT_TRUE(sensor.setTemperature(-12.34));
    EXPECT_EQ(sensor.temperature(), -12.3125);
}

TEST(TemperatureSensor, HasRegistersBehindItsPointer) {
    TemperatureSensor sensor;
    EXPECT_EQ(sensor.read(3), std::string("\x19\x00\x19", 3));
    sensor.write(std::string("\x00zz", 3));
    EXPECT_EQ(sensor.read(2), std::string("\x19\x00", 2)) << "the temperature cannot be written";
    sensor.write("\x02");
    EXPECT_EQ(sensor.read(2), std::string("\x4B\x00", 2));
    sensor.write("\x01g");
    EXPECT_EQ(sensor.read(2), "gg");
    sensor.write("\x03hij");
    EXPECT_EQ(sensor.read(2), "hi");
    sensor.write(std::string(1, '\0'));
    EXPECT_EQ(sensor.read(2), std::string("\x19\x00", 2));
}

TEST(PortExpander, ReadsItsPins) {
    PortExpander expander;
    EXPECT_EQ(expander.read(2), "\xFF\xFF");
    expander.write("\x01\xF5");
    EXPECT_EQ(expander.outputs(), 0xF5);
    EXPECT_EQ(expander.read(1), "\xF5");
    expander.setOutside(0x0F);
    EXPECT_EQ(expander.read(1), "\x05");
    expander.write("");
    EXPECT_EQ(expander.outputs(), 0xF5);
}

} // namespace
} // namespace headunit_test
