// Numbers that would be others with fewer bits, on the road that a station's lines take.
#include <gtest/gtest.h>

#include <string>

#include "support/DaemonTest.h"

namespace {

class WideNumbersInLinesTest : public DaemonTest {};

struct Row {
    const char* text;
    const char* refusal;
    const char* code;
};

const Row kRows[] = {
    {"memory write 8bit 1 0x100000000 hex(FF)", "Accessing Memory out of Limits", "8000100"},
    {"memory read 8bit 1 4294967296", "Accessing Memory out of Limits", "8000100"},
    {"diag cksum 0 0x100000000 4", "memory address too large", "B000001"},
    {"diag cksum 0 0 0x100000004", "size parameter too large", "B000002"},
    {"i2c write 0x100 0x150 hex(00FF)", "Bus number 256 is invalid", "7000005"},
    {"i2c write 0 0x150 hex(00FF)", "Slave address 336 is invalid", "1010000"},
    {"i2c read 0x100 1 0x50", "Bus number 256 is invalid", "7000005"},
    {"i2c read 0 257 0x50", "Overflow of allowed Range of Bytes to Read [1,247], should Read: 257",
     "1010000"},
    {"i2c setattributes 0 256 00", "Attribute ID 256 is unknown", "700000B"},
    {"i2c setattributes 0 0 1", "Attribute Value for AttributeId 0 is missing", "1010000"},
    {"blockdev open 436 256", "Device Type is unknown", "1010000"},
    {"blockdev open 180 256", "Device ID does not exist", "1010000"},
};

} // namespace

TEST_F(WideNumbersInLinesTest, NoneNamesWhatItsLastBitsName) {
    Connection station;
    expectExchange(station, request("memory write 8bit 1 0 hex(A5)"), answer("memory ok"));
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.text);
        const std::string name(row.text, std::string(row.text).find(' '));
        expectExchange(
            station, request(row.text),
            answer("Info \"" + std::string(row.refusal) + "\"") + answer(name + " Error 0x" + row.code));
    }
    expectExchange(station, request("memory read 8bit 1 0"), answer("memory hex(A5)"));
    expectExchange(station, request("i2c read 0 1 0x50 hex(00)"), answer("i2c hex(FF)"));
    expectExchange(station, request("i2c getattributes 0 0"), answer("i2c hex(01)"));
}
