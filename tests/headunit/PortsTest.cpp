#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>

#include "support/Peers.h"
#include "support/Waiting.h"

namespace headunit_test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// The nodes of the ports while the unit's peers are at work on them.
class PortsTest : public PeersTest {
protected:
    static std::string path(const std::string& port) { return "/dev/nvgpio/" + port; }
    std::string level(const std::string& port) const { return contentOf(node(path(port))); }

    /// Writes as the daemon does, without cutting the file first.
    void write(const std::string& port, const std::string& text) const {
        std::fstream(node(path(port)), std::ios::in | std::ios::out) << text;
    }

    bool becomes(const std::string& port, const std::string& wanted) const {
        return eventually([&] { return level(port) == wanted; });
    }
};

TEST_F(PortsTest, TheTelephoneFollowsItsSwitch) {
    for (int round = 0; round < 3; ++round) {
        write("nad_on_off", "1");
        EXPECT_TRUE(becomes("nad_status", "1"));
        write("nad_on_off", "0");
        EXPECT_TRUE(becomes("nad_status", "0"));
    }
}

TEST_F(PortsTest, TheTelephoneFollowsHoweverItsSwitchIsWritten) {
    writeFile(node(path("nad_on_off")), "1"); // cuts the file first
    EXPECT_TRUE(becomes("nad_status", "1"));
    writeFile(node("/dev/new"), "0");
    fs::rename(node("/dev/new"), node(path("nad_on_off")));
    EXPECT_TRUE(becomes("nad_status", "0"));
    tell("port nad_on_off 1");
    EXPECT_TRUE(becomes("nad_status", "1"));
}

TEST_F(PortsTest, TheTelephoneReactsToNothingElse) {
    write("nad_status", "1"); // as a user may
    write("nad_reset", "1");
    write("nad_on_off", "0");
    write("nad_on_off", "x");
    // An answer that is due later than the telephone's reaction would have been.
    tell("modem late 300");
    const Line modem(node("/dev/NAD/AT_port"));
    ASSERT_TRUE(modem.trySend("AT\r"));
    EXPECT_THAT(modem.receiveTo("\r\nOK\r\n"), HasSubstr("OK"));
    EXPECT_EQ(level("nad_status"), "1");
    EXPECT_EQ(level("nad_reset"), "1");
}

TEST_F(PortsTest, TheTelephoneWorksAgainWhenItsWireIsBack) {
    tell("port nad_status gone");
    write("nad_on_off", "1");
    tell("port nad_status back");
    tell("port nad_status unreadable");
    write("nad_on_off", "0");
    tell("port nad_status back");
    write("nad_on_off", "1");
    EXPECT_TRUE(becomes("nad_status", "1"));
}

TEST_F(PortsTest, ANodeDisappearsAndComesBackWithItsLevel) {
    tell("port usb_pwr_1 0");
    tell("port usb_pwr_1 gone");
    EXPECT_FALSE(fs::exists(node(path("usb_pwr_1"))));
    EXPECT_THAT(ask("ports").text, HasSubstr("\nusb_pwr_1 gone\nusb_pwr_0 1\n"));
    EXPECT_FALSE(ask("port usb_pwr_1 1").done);
    tell("port usb_pwr_1 gone");
    tell("port usb_pwr_1 back");
    EXPECT_EQ(level("usb_pwr_1"), "0");
    tell("port usb_pwr_1 back");
}

TEST_F(PortsTest, AnUnreadableNodeOpensButCannotBeRead) {
    const std::string file = node(path("vd1_int"));
    tell("port vd1_int unreadable");
    EXPECT_THAT(ask("ports").text, HasSubstr("\nvd1_int unreadable\n"));
    const System::Descriptor reading(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_TRUE(reading);
    char byte;
    EXPECT_EQ(::read(reading.get(), &byte, 1), -1);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_LT(::open(file.c_str(), O_WRONLY | O_CLOEXEC), 0);
    EXPECT_EQ(errno, EISDIR);
    tell("port vd1_int gone");
    EXPECT_FALSE(fs::exists(file));
    tell("port vd1_int unreadable");
    tell("port vd1_int back");
    EXPECT_EQ(level("vd1_int"), "1");
}

TEST_F(PortsTest, ANodeThatTheUserRemovedComesBackAsItWasAtTheStart) {
    fs::remove(node(path("wlan_reset")));
    tell("port wlan_reset back");
    EXPECT_EQ(level("wlan_reset"), "1");
}

TEST_F(PortsTest, AllLevelsAreTold) {
    write("nad_reset", "1");
    const std::string text = ask("ports").text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 20);
    EXPECT_THAT(text, HasSubstr("ioc_kru_irq 0\nipod_accessory 0\nipod_detect 0\nusb_pwr_1 1\n"
                                "usb_pwr_0 1\nnad_on_off 0\nnad_reset 1\nnad_status 0\n"));
    writeFile(node(path("nad_reset")), "");
    EXPECT_THAT(ask("ports").text, HasSubstr("\nnad_reset -\n"));
}

} // namespace
} // namespace headunit_test
