// As long as the tables of what the control refuses and of what it does.
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <sstream>
#include <vector>

#include "control/ControlSocket.h"
#include "support/Peers.h"
#include "support/UnitErrors.h"

namespace headunit_test {
namespace {

using headunit::UnitPeers;
using testing::HasSubstr;

class ControlTest : public PeersTest {
protected:
    System::Descriptor connect() const { return headunit::connectToControl(node("/run/headunit")); }
};

std::string readAll(int socket) {
    std::string text;
    char block[512];
    for (ssize_t count; (count = ::read(socket, block, sizeof block)) > 0;)
        text.append(block, static_cast<std::size_t>(count));
    return text;
}

struct RefusedLine {
    std::string line;
    std::string why;
};

void PrintTo(const RefusedLine& row, std::ostream* out) {
    *out << row.line.substr(0, 100);
}

class Refused : public ControlTest, public testing::WithParamInterface<RefusedLine> {};

TEST_P(Refused, SaysWhy) {
    const auto answer = ask(GetParam().line);
    EXPECT_FALSE(answer.done);
    EXPECT_EQ(answer.text, GetParam().why);
}

const std::string kNoLine = " is not one of station, loopback, modem, receiver";
const std::string kNoPlace = " is not a latitude within 90 and a longitude within 180 degrees";
const std::string kNoKey = " is not one of signal, registration, pin, late, silent";
const std::string kNoSignal = " is not a signal strength: 0 to 31, or 99 for unknown";
const std::string kNoTime = " is not a number of milliseconds: 0 to 600000";

const std::string kNoI2cKey = " is not one of manager, late, result, chip, temperature, pins, eeprom";
const std::string kNoBytes =
    " is not an address, 00 to FF, and bytes in hexadecimal that fit in after it";
const std::string kNoMedium = " is not one of sda0, sdb0, cd0, umass0, mnand0, fs0";

const RefusedLine kRefused[] = {
    {"", "there is no word"},
    {"  ", "there is no word"},
    {"fly",
     "'fly' is not one of unplug, plug, state, position, modem, loopback, receiver, i2c, wlan, bluetooth, display, insert, remove, ports, port, audio"},
    {"unplug", "usage: unplug LINE"},
    {"unplug station modem", "usage: unplug LINE"},
    {"unplug it", "'it'" + kNoLine},
    {"unplug %s%n", "'%s%n'" + kNoLine},
    {"plug", "usage: plug LINE"},
    {"plug it", "'it'" + kNoLine},
    {"plug modem", "modem is plugged in already"},
    {"state modem", "usage: state"},
    {"position 1", "usage: position LATITUDE LONGITUDE"},
    {"position 90.1 0", "'90.1 0'" + kNoPlace},
    {"position 0 -181", "'0 -181'" + kNoPlace},
    {"position north 0", "'north 0'" + kNoPlace},
    {"position 1x 0", "'1x 0'" + kNoPlace},
    {"position 1.2.3 0", "'1.2.3 0'" + kNoPlace},
    {"position nan 0", "'nan 0'" + kNoPlace},
    {"modem", "usage: modem signal|registration|pin|late|silent VALUE"},
    {"modem signal", "usage: modem signal|registration|pin|late|silent VALUE"},
    {"modem colour red green", "usage: modem signal|registration|pin|late|silent VALUE"},
    {"modem colour red", "'colour'" + kNoKey},
    {"modem signal 32", "'32'" + kNoSignal},
    {"modem signal strong", "'strong'" + kNoSignal},
    {"modem registration 6", "'6' is not a registration state: 0 to 5"},
    {"modem pin 1234", "'1234' is not one of ready, wanted, blocked, absent"},
    {"modem late -1", "'-1'" + kNoTime},
    {"modem late 600001", "'600001'" + kNoTime},
    {"modem late 99999999999", "'99999999999'" + kNoTime},
    {"modem silent maybe", "'maybe' is not on or off"},
    {"loopback", "usage: loopback on|off"},
    {"loopback 1", "'1' is not on or off"},
    {"receiver", "usage: receiver on|off"},
    {"receiver ON", "'ON' is not on or off"},
    {"i2c", "usage: i2c manager|late|result|chip|temperature|pins|eeprom VALUE [VALUE]"},
    {"i2c fly 1", "'fly'" + kNoI2cKey},
    {"i2c manager 1", "'1' is not on or off"},
    {"i2c manager", "usage: i2c manager on|off"},
    {"i2c late -1", "'-1'" + kNoTime},
    {"i2c late 1 2", "usage: i2c late MILLISECONDS"},
    {"i2c result EIO", "'EIO' is not a result: a whole number of 32 bits"},
    {"i2c result 2147483648", "'2147483648' is not a result: a whole number of 32 bits"},
    {"i2c result 5 -1", "'-1' is not a number of requests: 0 to 1000000"},
    {"i2c chip it on", "'it' is not one of eeprom, sensor, expander"},
    {"i2c chip sensor gone", "'gone' is not on or off"},
    {"i2c temperature -56", "'-56' is not a temperature in degrees Celsius: -55 to 125"},
    {"i2c pins 0FF", "'0FF' is not the levels of eight pins: 00 to FF"},
    {"i2c pins -1", "'-1' is not the levels of eight pins: 00 to FF"},
    {"i2c eeprom 00", "usage: i2c eeprom [ADDRESS HEX]"},
    {"i2c eeprom FF 0102", "'FF 0102'" + kNoBytes},
    {"i2c eeprom 00 0g", "'00 0g'" + kNoBytes},
    {"wlan", "usage: wlan manager|late|result|refuse|size VALUE [VALUE]"},
    {"wlan fly 1", "'fly' is not one of manager, late, result, refuse, size"},
    {"wlan manager 1", "'1' is not on or off"},
    {"wlan late soon", "'soon'" + kNoTime},
    {"wlan result x", "'x' is not a result: a whole number of 32 bits"},
    {"wlan result 5 x", "'x' is not a number of requests: 0 to 1000000"},
    {"wlan refuse 65536", "'65536' is not a number of 16 bits: 0 to 65535"},
    {"wlan refuse 1 1000001", "'1000001' is not a number of commands: 0 to 1000000"},
    {"wlan size -1", "'-1' is not a number of 16 bits: 0 to 65535"},
    {"wlan size 1 -1", "'-1' is not a number of commands: 0 to 1000000"},
    {"wlan size", "usage: wlan size BYTES [COMMANDS]"},
    {"bluetooth fly", "'fly' is not one of manager, late, silent, fail, send"},
    {"bluetooth manager up", "'up' is not on or off"},
    {"bluetooth late -1", "'-1'" + kNoTime},
    {"bluetooth silent 1", "'1' is not on or off"},
    {"bluetooth fail close", "'close' is not one of open, write, read"},
    {"bluetooth fail read -1", "'-1' is not a number of calls: 0 to 1000000"},
    {"bluetooth send", "usage: bluetooth send HEX"},
    {"bluetooth send 4", "'4' is not a packet in hexadecimal, its type first"},
    {"bluetooth send 04", "nobody has the bluetooth chip open"},
    {"display on", "'on' is not one of fail, late"},
    {"display fail it", "'it' is not one of showimage, dmdt"},
    {"display fail dmdt x", "'x' is not a number of calls: 0 to 1000000"},
    {"display late 600001", "'600001'" + kNoTime},
    {"insert it", "'it'" + kNoMedium},
    {"remove it", "'it'" + kNoMedium},
    {"remove", "usage: remove MEDIUM"},
    {"port it 1", "'it' is not a port"},
    {"port nad_reset 2", "'2' is not one of 0, 1, unreadable, gone, back"},
    {"ports nad_reset", "usage: ports"},
    {"audio on", "'on' is not one of active, inactive, stopped"},
    {"audio active", "the audio driver does not run"},
    {std::string(513, 'x'), "the line is too long"},
    {std::string(100000, 'x'), "the line is too long"},
    {std::string(512, ' '), "there is no word"},
};

INSTANTIATE_TEST_SUITE_P(Lines, Refused, testing::ValuesIn(kRefused));

TEST_F(ControlTest, DoesEverythingThatItKnows) {
    std::istringstream lines(
        "unplug station;plug station;unplug loopback;plug loopback;unplug modem;plug modem;"
        "unplug receiver;plug receiver;state;position 90 180;position -90.0 -180.0;"
        "modem signal 0;modem signal 99;modem registration 0;modem registration 5;"
        "modem pin ready;modem pin wanted;modem pin blocked;modem pin absent;modem late 0;"
        "modem late 600000;modem silent on;modem silent off;loopback off;loopback on;"
        "receiver off;receiver on;  receiver   on ;i2c manager off;i2c manager on;"
        "i2c late 600000;i2c late 0;i2c result -2147483648;i2c result 5 0;"
        "i2c chip eeprom off;i2c chip eeprom on;i2c temperature 1.5;i2c pins ff;"
        "i2c eeprom ff 01;i2c eeprom;wlan manager off;wlan manager on;wlan late 600000;"
        "wlan result -1 0;wlan refuse 65535 1000000;wlan size 0 3;bluetooth manager off;"
        "bluetooth manager on;bluetooth late 0;bluetooth silent on;bluetooth silent off;"
        "bluetooth fail open;bluetooth fail write 2;bluetooth fail read 0;"
        "display fail showimage;display fail dmdt 0;display late 600000;remove fs0;"
        "insert fs0;ports;port nad_reset 1;port nad_reset 0;port nad_reset unreadable;"
        "port nad_reset gone;port nad_reset back");
    int count = 0;
    for (std::string line; std::getline(lines, line, ';'); ++count)
        tell(line);
    EXPECT_EQ(count, 65);
}

TEST_F(ControlTest, TellsTheStateOfEveryDevice) {
    tell("receiver off");
    const Line line(node("/dev/ser1"));
    ASSERT_TRUE(line.trySend("abc"));
    EXPECT_EQ(line.receive(3), "abc");
    tell("unplug modem");
    EXPECT_EQ(ask("unplug modem").text, "modem is unplugged already");
    EXPECT_EQ(ask("state").text,
              "station /dev/usbserialadapter1 plugged from-unit 0 to-unit 0\n"
              "loopback /dev/ser1 plugged from-unit 3 to-unit 3\n"
              "modem /dev/NAD/AT_port unplugged from-unit 0 to-unit 0\n"
              "receiver /dev/ser3 plugged from-unit 0 to-unit 0\n"
              "i2c /dev/i2c0 on speed 100000 free requests 0 refused 0\n"
              "eeprom 0x50 on pointer 0\n"
              "sensor 0x48 on temperature 25\n"
              "expander 0x20 on outputs FF pins FF\n"
              "wlan /dev/io-net/uap0 on address 02:00:00:00:87:01 requests 0 refused 0\n"
              "bluetooth /dev/sdio0 on closed address 02:00:00:00:87:02 commands 0 unsaid 0\n"
              "sda0 /dev/sda0 removed\n"
              "sdb0 /dev/sdb0 removed\n"
              "cd0 /dev/cd0 inserted\n"
              "umass0 /dev/umass/umass0 inserted\n"
              "mnand0 /dev/mnand0 inserted\n"
              "fs0 /dev/fs0 inserted\n"
              "viewer stopped\n"
              "display 0 black\n"
              "display 4 black\n"
              "audio deva-nvaudio stopped");
}

TEST_F(ControlTest, DoesNotWaitForADisplayTool) {
    const System::Descriptor held = headunit::DisplayFiles(node("/run/headunit")).lock();
    EXPECT_EQ(ask("display late 1").text, "a display tool is at work; try again");
    EXPECT_TRUE(ask("state").done);
}

TEST_F(ControlTest, RefusesToPlugALineWhoseNameIsTaken) {
    tell("unplug modem");
    writeFile(node("/dev/NAD/AT_port"), "theirs");
    const auto answer = ask("plug modem");
    EXPECT_FALSE(answer.done);
    EXPECT_EQ(answer.text,
              node("/dev/NAD/AT_port") + " exists and is no link to a terminal; it is left as it is");
    EXPECT_THAT(ask("state").text, HasSubstr("modem /dev/NAD/AT_port unplugged"));
    EXPECT_EQ(contentOf(node("/dev/NAD/AT_port")), "theirs");
    std::filesystem::remove(node("/dev/NAD/AT_port"));
    tell("plug modem");
}

TEST_F(ControlTest, TakesALineInPieces) {
    const System::Descriptor socket = connect();
    ASSERT_TRUE(socket);
    for (const char character : std::string("plug it\n"))
        ASSERT_EQ(::send(socket.get(), &character, 1, MSG_NOSIGNAL), 1);
    EXPECT_EQ(readAll(socket.get()), "refused\n'it'" + kNoLine + "\n");
}

TEST_F(ControlTest, IsNotHeldUpByUsersWhoSayNothing) {
    std::vector<System::Descriptor> mute(20);
    for (System::Descriptor& user : mute)
        user = connect();
    EXPECT_TRUE(ask("state").done) << "once the first of them have been sent away";
}

TEST_F(ControlTest, SurvivesUsersWhoLeave) {
    for (int i = 0; i < 100; ++i) {
        const System::Descriptor socket = connect();
        ASSERT_TRUE(socket);
        const char* line = i % 2 == 0 ? "state\n" : "sta";
        ASSERT_GT(::send(socket.get(), line, std::strlen(line), MSG_NOSIGNAL), 0);
    }
    EXPECT_TRUE(ask("state").done);
}

TEST_F(ControlTest, IsAloneInAFolder) {
    EXPECT_EQ(unitErrorOf([this] { const UnitPeers second(m_unit); }),
              "another headunit is at work here (" + node("/run/headunit") + " is locked)");
    EXPECT_TRUE(ask("state").done);
    EXPECT_TRUE(exists("/dev/ser1"));
}

TEST_F(ControlTest, LeavesNothingAtTheEnd) {
    m_peers.reset();
    EXPECT_TRUE(std::filesystem::is_empty(node("/run/headunit")));
    for (const char* path : {"/dev/usbserialadapter1", "/dev/ser1", "/dev/NAD/AT_port", "/dev/ser3"})
        EXPECT_FALSE(exists(path)) << path;
    EXPECT_EQ(ask("state").text, "nobody listens");
}

TEST_F(ControlTest, TakesThePlaceOfARunThatWasKilled) {
    m_peers.reset();
    std::filesystem::create_symlink("/dev/pts/123456", node("/dev/ser1"));
    std::filesystem::create_symlink("/dev/pts/123457", stationEnd());
    {
        const System::Descriptor stale(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const std::string path = node("/run/headunit/control");
        ASSERT_LT(path.size(), sizeof address.sun_path);
        path.copy(address.sun_path, path.size());
        ASSERT_EQ(::bind(stale.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }
    EXPECT_EQ(ask("state").text, "nobody listens");
    m_peers.emplace(m_unit);
    EXPECT_TRUE(ask("state").done);
    const Line line(node("/dev/ser1"));
    ASSERT_TRUE(line.trySend("x"));
    EXPECT_EQ(line.receive(1), "x");
}

TEST_F(ControlTest, DoesNotStartOverSomethingElse) {
    m_peers.reset();
    writeFile(node("/dev/ser3"), "theirs");
    EXPECT_EQ(unitErrorOf([this] { m_peers.emplace(m_unit); }),
              "receiver line: " + node("/dev/ser3") +
                  " exists and is no link to a terminal; it is left as it is");
    EXPECT_FALSE(exists("/dev/ser1")) << "what was made before is taken back";
    EXPECT_EQ(contentOf(node("/dev/ser3")), "theirs");
}

TEST_F(ControlTest, WorksInAFolderWithALongName) {
    headunit::UnitFolder deep =
        headunit::UnitFolder::kept(m_parent / std::string(100, 'a') + "/" + std::string(100, 'b'));
    const UnitPeers peers(deep);
    const auto answer = headunit::askUnit(deep.hostPath("/run/headunit"), "state");
    EXPECT_TRUE(answer && answer->done);
}

TEST_F(ControlTest, TwoUnitsHaveNothingInCommon) {
    headunit::UnitFolder other = headunit::UnitFolder::kept(m_parent / "other");
    const UnitPeers peers(other);
    const Line ours(node("/dev/usbserialadapter1"));
    const Line theirs(other.hostPath("/dev/usbserialadapter1"));
    ASSERT_TRUE(Line(stationEnd()).trySend("ours"));
    ASSERT_TRUE(Line(peers.stationPath()).trySend("theirs"));
    EXPECT_EQ(ours.receive(4), "ours");
    EXPECT_EQ(theirs.receive(6), "theirs");
    tell("unplug station");
    EXPECT_TRUE(ours.seesHangUp());
    ASSERT_TRUE(Line(peers.stationPath()).trySend("more"));
    EXPECT_EQ(theirs.receive(4), "more");
}

} // namespace
} // namespace headunit_test
