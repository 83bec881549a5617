#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

#include "Links.h"
#include "client/Hex.h"
#include "client/Quoting.h"
#include "pictures/TestPictures.h"
#include "support/PngPicture.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "wire/Descriptor.h"

// The unit's lines, its wireless chip and its displays over each link.

namespace station {
namespace {

using headunit::kTestPictures;
using headunit::Picture;
using headunit_test::areEqual;
using headunit_test::decodePng;

constexpr char kLoopback[] = "/dev/ser1";
constexpr char kModem[] = "/dev/NAD/AT_port";
constexpr char kNotOpen[] = "Serial port not open., errorcode: 1024";

using Words = std::vector<std::string>;

/// Returns when so many bytes lie in the unit's buffer of the line, which nobody has fetched.
void waitUntilThere(const char* line, int count) {
    const System::Descriptor terminal(::open(line, O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(terminal) << line;
    int there = 0;
    EXPECT_TRUE(eventually([&] {
        return ::ioctl(terminal.get(), FIONREAD, &there) == 0 && there >= count;
    })) << there;
}

std::string bytesOf(const std::string& digits) {
    return argumentBytes("hex(" + digits + ")");
}

std::string hexOf(const std::string& bytes) {
    return "hex(" + hexDigits(bytes) + ")";
}

TEST_P(Links, TalkToTheModemAlike) {
    const std::string answer = "AT\r\r\nOK\r\n";
    expectAnswer({"serial", "open", "1", "115200", "0"}, "ok");
    expectAnswer({"serial", "getall", "1"}, "getall 0x01 base64()");
    expectAnswer({"serial", "get", "1", "2"}, "get 0x01 " + base64Argument(std::string(2, '\0')));
    expectAnswer({"serial", "send", "1", "hex(41 54 0D)"}, "ok");
    waitUntilThere(kModem, 9);
    expectAnswer({"serial", "get", "1", "11"},
                 "get 0x01 " + base64Argument(answer + std::string(2, '\0')));
    expectAnswer({"serial", "sends", "0x1", "base64(QVQN)"}, "ok");
    waitUntilThere(kModem, 9);
    expectAnswer({"serial", "get", "1", "3"}, "get 0x01 " + base64Argument("AT\r"));
    expectAnswer({"serial", "getal", "1"}, "getall 0x01 " + base64Argument("\r\nOK\r\n"));
    expectAnswer({"serial", "close", "1"}, "ok");
    expectRefusal({"serial", "getall", "1"}, kNotOpen, "A000000");
    expectRefusal({"serial", "send", "1", "AT"}, kNotOpen, "A000000");
}

TEST_P(Links, TalkOverTheLoopBackLineAlike) {
    if (GetParam().isSerial) {
        expectAnswer({"serial", "open", "0", "9600", "0x01"}, "ok");
    } else {
        // A station on TCP cannot open this channel; but it uses what was opened over the line.
        expectRefusal({"serial", "open", "0", "9600", "0"}, "Channel is a already in use by Bios",
                      "A000040");
        const Outcome opened =
            runStationAt(kLineTarget, {"--wait-startup", "serial", "open", "0", "9600", "0"});
        EXPECT_EQ(opened.exitCode, 0) << opened.errors;
    }
    std::string most;
    for (int byte = 0; byte < 242; ++byte)
        most += static_cast<char>(byte);
    expectAnswer({"serial", "send", "0", hexOf(most)}, "ok");
    waitUntilThere(kLoopback, 242);
    expectAnswer({"serial", "get", "0", "242"}, "get 0x00 " + base64Argument(most));
    const std::string rest = bytesOf("F2 F3 FD FE FF 00 03 11 13");
    expectAnswer({"serial", "send", "0", hexOf(rest)}, "ok");
    expectAnswer({"serial", "send", "0", "word"}, "ok");
    waitUntilThere(kLoopback, static_cast<int>(rest.size()) + 5);
    expectAnswer({"serial", "getall", "0"},
                 "getall 0x00 " + base64Argument(rest + std::string("word\0", 5)));
    expectAnswer({"serial", "closed", "0"}, "ok");
}

TEST_P(Links, AreRefusedChannelsAlike) {
    expectRefusal({"serial", "open", ownChannel(), "115200", "0"}, "Channel is a already in use by Bios",
                  "A000040");
    expectRefusal({"serial", "open", "7", "115200", "0"}, "Interface id 7 unknown", "A000004");
    expectRefusal({"serial", "open", "2", "115200", "2"}, "Could not detect Parity", "A000008");
    expectRefusal({"serial", "get", "2", "243"},
                  std::string("Overflow of Requesting Bytes to Read, allowed: [1,247], requested: ") +
                      (isBinary() ? "5" : "243"),
                  "10");
    expectRefusal({"serial", "getall", "2"}, kNotOpen, "A000000");
    expectRefusal({"serial", "send", "9", "hex(00)"}, "Handle does not exist, errorcode: 1285",
                  "A000000");
}

/// The packet that the Bluetooth side says, by and by.
std::string bluetoothPacket(const std::function<Outcome(const Words&)>& run) {
    const std::string none = "get 0xF1 base64()\n";
    Outcome outcome;
    EXPECT_TRUE(eventually([&] {
        outcome = run({"serial", "get", "241", "242"});
        return outcome.exitCode != 0 || outcome.output != none;
    }));
    return outcome.output;
}

TEST_P(Links, ReachBluetoothAlike) {
    const auto expectPacket = [](const std::string& digits) {
        EXPECT_EQ(bluetoothPacket(run), "get 0xF1 " + base64Argument(bytesOf(digits)) + "\n");
    };
    expectAnswer({"serial", "open", "241"}, "ok");
    expectAnswer({"serial", "get", "241", "5"}, "get 0xF1 base64()");
    expectRefusal({"serial", "getall", "241"}, "", "A000000");
    expectAnswer({"serial", "send", "241", "hex(01 03 0C 00)"}, "ok");
    expectPacket("04 0E 04 01 03 0C 00");
    expectAnswer({"serial", "send", "241", "hex(01 01 10 00)"}, "ok");
    expectPacket("04 0E 0C 01 01 10 00 05 00 01 05 FF FF 00 02");
    expectAnswer({"serial", "send", "241", "hex(01 09 10 00)"}, "ok");
    expectPacket("04 0E 0A 01 09 10 00 02 87 00 00 00 02");
    expectAnswer({"serial", "close", "241"}, "ok");
}

TEST_P(Links, ReachTheWlanChipAlike) {
    expectRefusal({"serial", "send", "240", "hex(03 00 08 00 01 00 00 00)"},
                  "you need to open port first", "1010000");
    expectAnswer({"serial", "open", "240"}, "ok");
    expectAnswer({"serial", "get", "240", "2"}, "get 0xF0 base64(AAA=)");
    expectAnswer({"serial", "send", "240", "hex(03 00 08 00 01 00 00 00)"}, "ok");
    const std::string description =
        bytesOf("03 80 1A 00 01 00 00 00 01 00 87 87 02 00 00 00 87 01 30 00 01 00 00 03 02 01");
    expectAnswer({"serial", "get", "240", "28"},
                 "get 0xF0 " + base64Argument(description + std::string(2, '\0')));
    // A command may be spread over requests.
    expectAnswer({"serial", "send", "240", "hex(4D 00 10)"}, "ok");
    expectAnswer({"serial", "send", "240", "hex(00 02 00 00 00 00 00 00 00 00 00 00 00)"}, "ok");
    std::string address = bytesOf("4D 80 10 00 02 00 00 00 00 00 02 00 00 00 87 01");
    address.resize(247);
    expectAnswer({"serial", "getall", "240"}, "getall 0xF0 " + base64Argument(address));
    expectRefusal({"serial", "send", "240", "hex(42 00 08 00 03 00 00 00)"}, "cmd.result was 2",
                  "1010000");
    expectAnswer({"serial", "close", "240"}, "ok");
}

Picture shownOn(int display) {
    return decodePng(contentOf("/run/headunit/display-" + std::to_string(display) + ".png"));
}

TEST_P(Links, ShowPicturesAlike) {
    const Picture grey = kTestPictures[1].draw();
    expectAnswer({"graphic", "display", "0", "1"}, "ok");
    EXPECT_TRUE(areEqual(shownOn(0), grey));
    EXPECT_TRUE(areEqual(shownOn(4), Picture(headunit::kDisplayWidth, headunit::kDisplayHeight)));
    expectAnswer({"graphic", "displayed", "0x2", "00"}, "ok");
    EXPECT_TRUE(areEqual(shownOn(4), kTestPictures[0].draw()));
    expectAnswer({"graphic", "capture", "3", "0"}, "ok");
    EXPECT_FALSE(areEqual(shownOn(0), grey));
    EXPECT_FALSE(areEqual(shownOn(0), Picture(headunit::kDisplayWidth, headunit::kDisplayHeight)));
}

TEST_P(Links, AreRefusedPicturesAlike) {
    expectRefusal({"graphic", "display", "1", "0"},
                  "Output Channel for Test picture out of range for PAG variant", "49000002");
    expectRefusal({"graphic", "display", "0", "3"}, "Test picture index out of range", "49000004");
    expectRefusal({"graphic", "capture", "3", "2"}, "The output channel : 2 is invalid for video",
                  "49000002");
    expectRefusal({"graphic", "capture", "1", "0"}, "The input channel : 1 is invalid for video",
                  "49000008");
}

} // namespace
} // namespace station
