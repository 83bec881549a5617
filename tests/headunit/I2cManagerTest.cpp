#include <gmock/gmock.h>

#include <cerrno>
#include <chrono>
#include <optional>

#include "support/I2cPackets.h"
#include "support/ManagerClient.h"
#include "support/Peers.h"
#include "support/Waiting.h"

namespace headunit_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::HasSubstr;

using Bus = ManagerClient;

class I2cManagerTest : public PeersTest {
protected:
    Bus connect() const { return {node("/dev"), "i2c0"}; }

    bool stateHas(const std::string& text) const {
        return ask("state").text.find(text) != std::string::npos;
    }
};

const std::string kDone = numbers({0});
const std::string kReadTemperature = combinedPacket(0x48, std::string(1, '\0'), 2);
const std::string kTemperatureHeader = numbers({0x48, 2, 1, 2, 1});

TEST_F(I2cManagerTest, AnswersAtItsNode) {
    EXPECT_TRUE(std::filesystem::is_socket(node("/dev/i2c0")));
    const Bus bus = connect();
    EXPECT_EQ(bus.ask(kReadTemperature), kDone + kTemperatureHeader + std::string("\x19\x00", 2));
    tell("i2c temperature -0.0625");
    EXPECT_EQ(bus.ask(kReadTemperature), kDone + kTemperatureHeader + "\xFF\xF0");
    EXPECT_EQ(bus.ask(receivePacket(0x33, 1)), numbers({EIO}));
}

TEST_F(I2cManagerTest, ShowsAndTakesTheStateOfItsChips) {
    const Bus bus = connect();
    EXPECT_EQ(bus.ask(sendPacket(0x50, std::string("\x10hello"))), kDone);
    EXPECT_EQ(bus.ask(sendPacket(0x20, "\x3C")), kDone);
    EXPECT_EQ(bus.ask(speedPacket(400000)), kDone);
    EXPECT_THAT(ask("i2c eeprom").text, HasSubstr("\n10: 68 65 6C 6C 6F FF FF"));
    tell("i2c eeprom 00 4142");
    EXPECT_EQ(bus.ask(combinedPacket(0x50, std::string(1, '\0'), 2)),
              kDone + numbers({0x50, 2, 1, 2, 1}) + "AB");
    tell("i2c pins 0F");
    tell("i2c chip sensor off");
    EXPECT_EQ(bus.ask(kReadTemperature), numbers({EIO}));
    EXPECT_THAT(ask("state").text, HasSubstr("i2c /dev/i2c0 on speed 400000 free requests 5 refused 1\n"
                                             "eeprom 0x50 on pointer 2\n"
                                             "sensor 0x48 off temperature 25\n"
                                             "expander 0x20 on outputs 3C pins 0C\n"));
    tell("i2c chip sensor on");
    EXPECT_EQ(bus.ask(kReadTemperature)->substr(0, 4), kDone);
}

TEST_F(I2cManagerTest, GivesTheResultsThatItWasToldTo) {
    const Bus bus = connect();
    tell("i2c result 14");
    EXPECT_EQ(bus.ask(kReadTemperature), numbers({14}));
    EXPECT_EQ(bus.ask(kReadTemperature)->substr(0, 4), kDone);
    tell("i2c result 22 2");
    EXPECT_EQ(bus.ask(kReadTemperature), numbers({22}));
    EXPECT_EQ(connect().ask(kReadTemperature), numbers({22}));
    EXPECT_EQ(bus.ask(kReadTemperature)->substr(0, 4), kDone);
}

TEST_F(I2cManagerTest, KeepsTheBusForAClientUntilItLeaves) {
    Bus holder = connect();
    const Bus other = connect();
    EXPECT_EQ(holder.ask(sendPacket(0x20, "\x01", false)), kDone);
    EXPECT_EQ(other.ask(receivePacket(0x20, 1)), numbers({EPERM}));
    EXPECT_TRUE(stateHas(" held "));
    holder.close();
    EXPECT_TRUE(eventually([&] { return stateHas(" free "); }));
    EXPECT_EQ(other.ask(receivePacket(0x20, 1))->substr(0, 4), kDone);
}

TEST_F(I2cManagerTest, AnswersLate) {
    const Bus bus = connect();
    tell("i2c late 300");
    const auto start = steady_clock::now();
    ASSERT_TRUE(bus.send(kReadTemperature));
    EXPECT_TRUE(ask("state").done) << "nobody else waits for it";
    EXPECT_EQ(bus.receive()->substr(0, 4), kDone);
    EXPECT_GE(steady_clock::now() - start, milliseconds(300));
    tell("i2c late 600000");
    ASSERT_TRUE(bus.send(kReadTemperature));
    EXPECT_TRUE(eventually([&] { return stateHas(" requests 2 "); }));
    tell("i2c late 0");
    EXPECT_EQ(connect().ask(kReadTemperature)->substr(0, 4), kDone);
    EXPECT_FALSE(bus.hasAnswer(0));
}

TEST_F(I2cManagerTest, SurvivesClientsWhoDoNotWait) {
    tell("i2c late 600000");
    {
        const Bus bus = connect();
        ASSERT_TRUE(bus.send(sendPacket(0x20, "\x01", false)));
        ASSERT_TRUE(eventually([&] { return stateHas(" held "); }));
    }
    EXPECT_TRUE(eventually([&] { return stateHas(" free "); }));
    tell("i2c late 0");
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(connect().send(kReadTemperature)) << i;
    EXPECT_EQ(connect().ask(kReadTemperature)->substr(0, 4), kDone);
}

TEST_F(I2cManagerTest, GoesAwayInTheMiddleOfARequestAndComesBack) {
    const Bus bus = connect();
    tell("i2c late 600000");
    ASSERT_TRUE(bus.send(sendPacket(0x20, "\x42")));
    ASSERT_TRUE(eventually([&] { return stateHas(" requests 1 "); }));
    tell("i2c manager off");
    EXPECT_EQ(bus.receive(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(node("/dev/i2c0")));
    EXPECT_FALSE(connect().isOpen());
    EXPECT_TRUE(stateHas("i2c /dev/i2c0 off "));
    tell("i2c manager off");
    tell("i2c late 0");
    tell("i2c manager on");
    tell("i2c manager on");
    EXPECT_EQ(connect().ask(receivePacket(0x20, 1)), kDone + numbers({0x20, 2, 1, 1}) + "\x42");
}

TEST_F(I2cManagerTest, DoesNotComeBackOverSomethingElse) {
    tell("i2c manager off");
    writeFile(node("/dev/i2c0"), "theirs");
    EXPECT_EQ(ask("i2c manager on").text,
              node("/dev/i2c0") + " exists and is no socket; it is left as it is");
    EXPECT_EQ(contentOf(node("/dev/i2c0")), "theirs");
    std::filesystem::remove(node("/dev/i2c0"));
    tell("i2c manager on");
    EXPECT_TRUE(connect().isOpen());
}

TEST_F(I2cManagerTest, TakesPacketsOfAllSizes) {
    const Bus bus = connect();
    for (const std::string& packet :
         {std::string(), std::string("x"), std::string(15, '\0'), std::string(100000, '\xFF')})
        EXPECT_EQ(bus.ask(packet), numbers({EINVAL})) << packet.size();
    EXPECT_EQ(bus.ask(sendPacket(0x50, std::string(65536, 'x'))), kDone);
    EXPECT_EQ(bus.ask(sendPacket(0x50, std::string(65537, 'x'))), numbers({ENOMEM}));
    EXPECT_EQ(bus.ask(receivePacket(0x50, 65536))->size(), 4u + 16u + 65536u);
}

TEST_F(I2cManagerTest, ServesManyClientsAtOnce) {
    constexpr std::size_t kClients = 60;
    std::vector<Bus> clients;
    clients.reserve(kClients);
    for (std::size_t i = 0; i < kClients; ++i)
        clients.push_back(connect());
    for (const Bus& bus : clients)
        ASSERT_TRUE(bus.send(kReadTemperature));
    for (const Bus& bus : clients)
        EXPECT_EQ(bus.receive().value_or("").substr(0, 4), kDone);
}

TEST_F(I2cManagerTest, LeavesNothingAtTheEnd) {
    const Bus bus = connect();
    ASSERT_EQ(bus.ask(kReadTemperature)->substr(0, 4), kDone);
    m_peers.reset();
    EXPECT_EQ(bus.receive(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(node("/dev/i2c0")));
}

} // namespace
} // namespace headunit_test
