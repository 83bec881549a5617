#include <gmock/gmock.h>

#include <cerrno>
#include <chrono>

#include "support/ManagerClient.h"
#include "support/Peers.h"
#include "support/Waiting.h"
#include "support/WlanPackets.h"

namespace headunit_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::HasSubstr;

const std::string kReset = wlanPacket(hostCommand(0xA9, 1, ""));
const std::string kResetDone = wlanAnswer(hostCommand(0x80A9, 1, ""));

class WlanManagerTest : public PeersTest {
protected:
    ManagerClient connect() const { return {node("/dev/io-net"), "uap0"}; }
};

TEST_F(WlanManagerTest, AnswersAtItsNode) {
    EXPECT_TRUE(std::filesystem::is_socket(node("/dev/io-net/uap0")));
    const ManagerClient client = connect();
    EXPECT_EQ(client.ask(kReset), kResetDone);
    EXPECT_EQ(client.ask(wlanPacket(hostCommand(0x4D, 2, shorts({1}) + "\x02\x34\x56\x78\x9A\xBC"))),
              wlanAnswer(hostCommand(0x804D, 2, shorts({1}) + "\x02\x34\x56\x78\x9A\xBC")));
    EXPECT_EQ(client.ask("nonsense"), numbers({EINVAL}));
    EXPECT_THAT(ask("state").text,
                HasSubstr("wlan /dev/io-net/uap0 on address 02:34:56:78:9A:BC requests 3 refused 1\n"));
}

TEST_F(WlanManagerTest, TellsThatItsDriverIsLoaded) {
    EXPECT_TRUE(std::filesystem::is_regular_file(node("/dev/shmem/mv8787wl")));
}

TEST_F(WlanManagerTest, FailsAsItIsTold) {
    const ManagerClient client = connect();
    tell("wlan result 5");
    EXPECT_EQ(client.ask(kReset), numbers({5}));
    tell("wlan refuse 4660 2");
    const std::string refused = wlanAnswer(hostCommand(0x80A9, 1, "", 0x1234));
    EXPECT_EQ(client.ask(kReset), refused);
    EXPECT_EQ(connect().ask(kReset), refused);
    tell("wlan size 248");
    EXPECT_EQ(client.ask(kReset), wlanAnswer(shorts({0x80A9, 248, 1, 0}) + std::string(240, '\0')));
    tell("wlan size 300");
    EXPECT_EQ(client.ask(kReset)->size(), 4u + 303u) << "no more than there is room for";
    EXPECT_EQ(client.ask(kReset), kResetDone);
}

TEST_F(WlanManagerTest, AnswersLate) {
    const ManagerClient client = connect();
    tell("wlan late 300");
    const auto start = steady_clock::now();
    EXPECT_EQ(client.ask(kReset), kResetDone);
    EXPECT_GE(steady_clock::now() - start, milliseconds(300));
}

TEST_F(WlanManagerTest, GoesAwayAndComesBack) {
    const ManagerClient client = connect();
    tell("wlan late 600000");
    ASSERT_TRUE(client.send(kReset));
    ASSERT_TRUE(eventually([&] {
        return ask("state").text.find(" requests 1 refused 0\nbluetooth") != std::string::npos;
    }));
    tell("wlan manager off");
    EXPECT_EQ(client.receive(), std::nullopt);
    EXPECT_FALSE(connect().isOpen());
    EXPECT_THAT(ask("state").text, HasSubstr("wlan /dev/io-net/uap0 off address "));
    tell("wlan late 0");
    tell("wlan manager on");
    EXPECT_EQ(connect().ask(kReset), kResetDone);
}

TEST_F(WlanManagerTest, LeavesNothingAtTheEnd) {
    m_peers.reset();
    EXPECT_FALSE(std::filesystem::exists(node("/dev/io-net/uap0")));
}

} // namespace
} // namespace headunit_test
