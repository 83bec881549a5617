#include "Links.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cstdlib>
#include <string>

#include "wire/Base64.h"

namespace station {

INSTANTIATE_TEST_SUITE_P(Station, Links, testing::ValuesIn(allLinks()), nameOfLink);

namespace {

TEST_P(Links, ReadAndWriteMemoryAlike) {
    expectAnswer({"memory", "write", "8bit", "4", "0x100", "hex(01020304)"}, "ok");
    expectAnswer({"memory", "read", "8bit", "4", "0x100"}, "hex(01020304)");
    expectAnswer({"memory", "write", "16bit", "2", "0x200", "hex(11 12 13 14)"}, "ok");
    expectAnswer({"memory", "read", "16bit", "1", "0x202"}, "hex(1314)");
    expectAnswer({"memory", "write", "32bit", "1", "01000", "base64(ISIjJCUm)"}, "ok");
    expectAnswer({"memory", "read", "32bit", "2", "512"}, "hex(2122232400000000)");
    expectAnswer({"memory", "write", "8bitcrc", "3", "0x300", "hex(70 80 90)", "0x80"}, "ok");
    expectAnswer({"memory", "read", "8bitcrc", "3", "0x300"}, "hex(80708090)");
    expectAnswer({"memory", "read", "8bitcrc", "0", "0"}, "hex(00)");
    expectAnswer({"memory", "read", "8bit", "0", "0"}, "hex()");
    expectAnswer({"memory", "write", "8bit", "5", "0x400", "word"}, "ok");
    expectAnswer({"memory", "write", "8bit", "3", "0x408", "base64(QQ==)"}, "ok");
    expectAnswer({"memory", "read", "8bit", "12", "0x400"}, "hex(776F72640000000041000000)");
    expectAnswer({"memory", "read", "8bit", "1", "0x100", "ignored"}, "hex(01)");
}

TEST_P(Links, MoveTheMostMemoryAlike) {
    std::string digits;
    for (int i = 0; i < 244; ++i)
        digits += "01";
    expectAnswer({"memory", "write", "8bitcrc", "244", "0x7FFFF0B", "hex(" + digits + ")", "244"}, "ok");
    expectAnswer({"memory", "read", "8bitcrc", "244", "0x7FFFF0B"}, "hex(F4" + digits + ")");
    expectAnswer({"memory", "read", "32bit", "1", "0x7FFFF0C"}, "hex(01010101)");
}

TEST_P(Links, AreRefusedMemoryAlike) {
    expectRefusal({"memory", "read", "16bit", "1", "0x101"}, "Alignment Error for Start Address",
                  "8001000");
    expectRefusal({"memory", "write", "32bit", "1", "2", "hex(01020304)"},
                  "Alignment Error for Start Address", "8001000");
    expectRefusal({"memory", "read", "32bit", "62", "0"},
                  "Number of Accessesout of Bounds [(62*4 => 248) > 244]", "8000100");
    expectRefusal({"memory", "read", "8bit", "1", "0x7FFFFFF"}, "Accessing Memory out of Limits",
                  "8000100");
    expectRefusal({"memory", "write", "8bit", "1", "0xFFFFFFFF", "hex(01)"},
                  "Accessing Memory out of Limits", "8000100");
}

TEST_P(Links, ChecksumAlike) {
    expectAnswer({"memory", "write", "8bit", "9", "0x200", "123456789"}, "ok");
    expectAnswer({"diag", "cksum", "0", "0x200", "9"}, "cksum base64(dFJwgQ==)");
    expectAnswer({"diag", "cksummed", "0", "0x200", "4"}, "cksum base64(MTIzNA==)");
    expectRefusal({"diag", "cksum", "0", "0", "3"}, "length paramater too small", "B000002");
    expectRefusal({"diag", "cksum", "1", "0", "4"}, "segmented memory type (1) not implemented",
                  "1010000");
    expectRefusal({"diag", "cksum", "0", "0x8000000", "4"}, "memory address too large", "B000001");
}

TEST_P(Links, ReadAndWritePortsAlike) {
    expectAnswer({"port", "getattributes"}, "hex(00151371371355577115771307)");
    expectAnswer({"port", "read", "3"}, "hex(0307)");
    expectAnswer({"port", "write", "3", "0"}, "ok");
    expectAnswer({"port", "read", "3"}, "hex(0303)");
    expectAnswer({"port", "writes", "0x12", "1"}, "ok");
    expectAnswer({"port", "reading", "18"}, "hex(1207)");
    expectRefusal({"port", "read", "21"}, "Invalid Port: 21. Allowed port range is: [0,20]", "27000010");
    expectRefusal({"port", "write", "255", "1"}, "Invalid Port: 255. Allowed port range is: [0,20]",
                  "27000010");
    expectRefusal({"port", "write", "1", "1"}, "Port 1 is not an Output Port", "27000040");
}

TEST_P(Links, ReadAndWriteTheBusAlike) {
    expectAnswer({"i2c", "read", "0", "2", "0x48", "hex(00)"}, "hex(1900)");
    expectAnswer({"i2c", "write", "0", "0x50", "hex(50 1F 2E)"}, "ok");
    expectAnswer({"i2c", "read", "0", "3", "0x50", "hex(50)"}, "hex(1F2EFF)");
    expectAnswer({"i2c", "read", "0", "1", "0x50", "hex(60 4D)"}, "hex(FF)");
    expectAnswer({"i2c", "read", "0", "1", "0x50", "hex(60)"}, "hex(4D)");
    expectAnswer({"i2c", "write", "0", "0x50", "P"}, "ok");
    expectAnswer({"i2c", "read", "0", "1", "0x50", "base64(UA==)"}, "hex(FF)");
    expectAnswer({"i2c", "read", "0", "3", "0x50", "hex(50)"}, "hex(0000FF)");
    expectAnswer({"i2c", "write", "0", "0x20", "hex(20)"}, "ok");
    expectAnswer({"i2c", "read", "0", "1", "0x20"}, "hex(20)");
    expectAnswer({"i2c", "getattributes", "0", "0"}, "hex(01)");
    expectAnswer({"i2c", "setattributes", "0", "0", "00"}, "ok");
    expectAnswer({"i2c", "getattributes", "0", "0"}, "hex(00)");
    expectAnswer({"i2c", "getattributes", "0", "1"}, "hex(0064)");
    expectAnswer({"i2c", "setattributes", "0", "1", "0190"}, "ok");
    expectAnswer({"i2c", "getattributes", "0", "1"}, "hex(0190)");
}

TEST_P(Links, AreRefusedTheBusAlike) {
    expectRefusal({"i2c", "read", "1", "1", "0x50"}, "Bus number 1 is invalid", "7000005");
    expectRefusal({"i2c", "write", "1", "0x50", "hex(50)"}, "Bus number 1 is invalid", "7000005");
    expectRefusal({"i2c", "getattributes", "255", "0"}, "Bus number 255 is invalid", "7000005");
    expectRefusal({"i2c", "getattributes", "0", "9"}, "Attribute ID 9 is unknown", "700000B");
    expectRefusal({"i2c", "setattributes", "0", "9", "01"}, "Attribute ID 9 is unknown", "700000B");
    expectRefusal({"i2c", "setattributes", "0", "0", "02"},
                  "Attribute Value 2 for AttributeId 0 is unknown", "1010000");
    expectRefusal({"i2c", "setattributes", "0", "1", "64"}, "Clockspeed of 25600 is not supported",
                  "700000D");
    expectRefusal({"i2c", "read", "0", "248", "0x50"},
                  "Overflow of allowed Range of Bytes to Read [1,247], should Read: 248", "1010000");
    expectRefusal({"i2c", "write", "0", "0x31", "1"},
                  "Write Error on Device /dev/i2c0: The master send failed, errorcode: 5", "7000001");
}

/// How the number of bytes in a block is answered.
std::string oneBlock() {
    struct stat status = {};
    EXPECT_EQ(::stat("/dev/umass/umass0", &status), 0);
    const auto size = static_cast<unsigned>(status.st_blksize);
    const std::array<unsigned char, 4> bytes = {
        static_cast<unsigned char>(size >> 24), static_cast<unsigned char>(size >> 16),
        static_cast<unsigned char>(size >> 8), static_cast<unsigned char>(size)};
    return "base64(" + System::encodeBase64(bytes.data(), bytes.size()) + ")";
}

TEST_P(Links, MoveBlocksAlike) {
    expectAnswer({"blockdev", "open", "179", "0"}, "ok");
    expectAnswer({"blockdev", "read", "179", "0", "0", "1", "0x10000"}, oneBlock());
    expectAnswer({"memory", "read", "8bit", "8", "0x1002B"}, "hex(485520535449434B)");
    expectAnswer({"memory", "write", "8bit", "4", "0x10000", "hex(DEADBEEF)"}, "ok");
    expectAnswer({"blockdev", "write", "0xB3", "0", "2", "1", "0x10000"}, oneBlock());
    expectAnswer({"blockdev", "reads", "179", "0", "02", "1", "0x20000"}, oneBlock());
    expectAnswer({"memory", "read", "8bit", "4", "0x20000"}, "hex(DEADBEEF)");
    expectAnswer({"blockdev", "closed", "179", "0"}, "ok");
}

TEST_P(Links, AreRefusedBlocksAlike) {
    expectRefusal({"blockdev", "read", "179", "0", "0", "1", "0"},
                  "Device is not properly opened, file descriptor is invalid, errorCode: 16842752",
                  "1010000");
    expectRefusal({"blockdev", "open", "181", "0"}, "Device Type is unknown", "1010000");
    expectRefusal({"blockdev", "open", "180", "2"}, "Device ID does not exist", "1010000");
    expectAnswer({"blockdev", "open", "178", "0"}, "ok");
    expectRefusal({"blockdev", "write", "178", "0", "0", "1", "0"},
                  "Device is Read-Only declared, errorCode: 16842752", "1010000");
    expectRefusal({"blockdev", "read", "178", "0", "0", "0xFFFFFFFF", "0"},
                  "Endblock does not exist on Device, errorCode: 16842752", "1010000");
    expectRefusal({"blockdev", "read", "178", "0", "0", "1", "0x8000000"}, "Memoryoffset out of Range",
                  "1010000");
}

TEST_P(Links, SwitchTheAudioDriverAlike) {
    const std::string notRunning =
        "Nvidia audio driver is not running: slay -s SIGUSR1 deva-nvaudio returned with rc: 0 ";
    expectRefusal({"audio", "deactivate"}, notRunning, "50010000");
    ASSERT_EQ(std::system("deva-nvaudio"), 0);
    expectAnswer({"audio", "activate"}, "ok");
    expectAnswer({"audio", "deactivated"}, "ok");
}

} // namespace
} // namespace station
