#include <string>

#include "FakeLine.h"
#include "FormTables.h"
#include "client/BinaryRequest.h"

namespace station {
namespace {

const SentForm kSent[] = {
    {"memory read 8bit 16 0x100", "08 74 00 10 00 00 01 00"},
    {"memory read 16bit 2 0x12345678", "08 74 02 02 12 34 56 78"},
    {"memory read 32bit 61 4", "08 74 04 3D 00 00 00 04"},
    {"memory read 8bitcrc 4 0x100", "0A 74 06 04 00 00 01 00 00 00"},
    {"memory read 8bit 0 0", "08 74 00 00 00 00 00 00"},
    {"memory read 8bit 0377 0xffffffff", "08 74 00 FF FF FF FF FF"},
    {"memory read 8bit 0X1f 4294967295", "08 74 00 1F FF FF FF FF"},
    // Misaligned, too many, out of limits: for the unit to say.
    {"memory read 32bit 255 0x8000001", "08 74 04 FF 08 00 00 01"},
    // What the unit ignores.
    {"memory read 8bit 1 2 more", "08 74 00 01 00 00 00 02"},
    // Whatever stands for the same word.
    {"memory 'hex(72 65 61 64)' base64(OGJpdA==) 'hex(31 36)' 0", "08 74 00 10 00 00 00 00"},
    {"memory write 8bit 4 0x100 hex(01020304)", "0C 74 01 04 00 00 01 00 01 02 03 04"},
    {"memory write 16bit 2 2 'hex(01 02 03 04)'", "0C 74 03 02 00 00 00 02 01 02 03 04"},
    {"memory write 32bit 2 0 base64(AQIDBAUGBwg=)", "10 74 05 02 00 00 00 00 01 02 03 04 05 06 07 08"},
    {"memory write 8bitcrc 3 0x01020304 hex(0A0B0C) 0x21", "0E 74 07 03 01 02 03 04 00 00 21 0A 0B 0C"},
    {"memory write 8bitcrc 0 0 'hex( )' 0", "0B 74 07 00 00 00 00 00 00 00 00"},
    {"memory write 8bit 3 0 abc", "0B 74 01 03 00 00 00 00 61 62 63"},
    // A word's zero byte, and the zeros that fill up base64, are there on the unit's side, too.
    {"memory write 8bit 4 0 abc", "0C 74 01 04 00 00 00 00 61 62 63 00"},
    {"memory write 8bit 3 0 base64(QQ==)", "0B 74 01 03 00 00 00 00 41 00 00"},
    // No more than the count asks for.
    {"memory write 16bit 1 0 hex(01020304)", "0A 74 03 01 00 00 00 00 01 02"},
    {"memory write 8bit 1 0 " + bytes("5A", 255), "09 74 01 01 00 00 00 00 5A"},
    // Too few bytes and too many: for the unit to say.
    {"memory write 8bit 4 0 hex(0102)", "0A 74 01 04 00 00 00 00 01 02"},
    {"memory write 8bit 244 0 " + bytes("5A", 244), "FC 74 01 F4 00 00 00 00 " + repeated("5A", 244)},
    {"memory write 8bit 250 0 " + bytes("5A", 250), "FF 74 01 FA 00 00 00 00 " + repeated("5A", 247)},
    {"memory write 8bitcrc 244 0 " + bytes("01", 244) + " 244",
     "FF 74 07 F4 00 00 00 00 00 00 F4 " + repeated("01", 244)},
    {"memory write 8bitcrc 245 0 " + bytes("01", 245) + " 245",
     "FF 74 07 F5 00 00 00 00 00 00 F5 " + repeated("01", 244)},
    {"memory write 8bit 1 0 hex(01) 33", "09 74 01 01 00 00 00 00 01"},
};
const RefusedForm kRefused[] = {
    {"memory", "memory has the binary forms memory read WIDTH COUNT ADDRESS"},
    {"memory read 8bit 1", "memory has the binary forms"},
    {"memory write 8bit 1 0", "memory has the binary forms"},
    {"memory write 8bitcrc 1 0 hex(01)", "DATA CHECKSUM; WIDTH is 8bit"},
    // These words are compared as a whole.
    {"memory reading 8bit 1 0", "memory has the binary forms"},
    {"memory read 8bitc 1 0", "memory has the binary forms"},
    {"memory read 64bit 1 0", "memory has the binary forms"},
    {"memory read 8bit 256 0",
     "COUNT has to be a number from 0 to 255 in a binary request, such as 16, 0x10 or 020, and not '256'"},
    {"memory read 8bit -1 0", "COUNT has to be a number from 0 to 255"},
    {"memory read 8bit ten 0", "and not 'ten'"},
    {"memory read 8bit 08 0", "and not '08'"},
    {"memory read 8bit 0x 0", "and not '0x'"},
    {"memory read 8bit '1 ' 0", "and not '1 '"},
    {"memory read 8bit 1 0x100000000", "ADDRESS has to be a number from 0 to 4294967295"},
    {"memory read 8bit 1 -4", "and not '-4'"},
    {"memory write 8bitcrc 1 0 hex(01) 256", "CHECKSUM has to be a number from 0 to 255"},
    {"memory write 8bit 1 0 " + bytes("5A", 256),
     "DATA has 256 bytes, and the unit takes at most 255; write it in parts"},
    {"memory write 8bit 1 0 ''", "an empty argument cannot be sent"},
    {"memory write 8bit 1 0 hex()", "is empty"},
    {"memory write 8bit 1 0 hex(012)", "an unpaired hex digit"},
    {"memory write 8bit 1 0 base64(A)", "is not valid base64"},
    {"memory write 8bit 1 0 a\nb", "send its bytes as base64(...)"},
};
const ShownForm kShown[] = {
    {"memory read 8bit 3 0", "01 2A FF", "hex(012AFF)"},
    {"memory read 8bit 0 0", "", "hex()"},
    {"memory read 16bit 1 0", "01 02", "hex(0102)"},
    {"memory read 32bit 2 0", "01 02 03 04 05 06 07 08", "hex(0102030405060708)"},
    {"memory read 8bitcrc 4 0", "00 00 0A 01 02 03 04", "hex(0A01020304)"},
    {"memory read 8bitcrc 0 0", "00 00 00", "hex(00)"},
    {"memory write 8bit 1 0 hex(01)", "", "ok"},
    {"memory write 32bit 1 0 hex(01020304)", "", "ok"},
    {"memory write 8bitcrc 1 0 hex(01) 1", "00 00 01", "ok"},
};
const MalformedForm kMalformed[] = {
    {"memory read 8bit 3 0", "01 02",
     "malformed answer: expected a payload of 3 bytes, and not 2: hex(01 02)"},
    {"memory read 8bit 3 0", "01 02 03 04", "3 bytes, and not 4"},
    {"memory read 16bit 3 0", "01 02 03", "6 bytes, and not 3"},
    {"memory read 8bitcrc 1 0", "00 00 01", "4 bytes, and not 3"},
    {"memory read 8bitcrc 1 0", "00 01 01 01", "expected the tag hex(00 00): hex(00 01 01 01)"},
    {"memory write 8bit 1 0 hex(01)", "00", "0 bytes, and not 1"},
    {"memory write 8bitcrc 1 0 hex(01) 1", "", "3 bytes, and not 0"},
};

FORM_TESTS(Memory);

TEST(MemoryForm, TellsAWrongChecksumByItsCode) {
    const auto request =
        BinaryRequest::encode("memory", {"write", "8bitcrc", "2", "0", "hex(0102)", "9"});
    const UnitFrame frame(framed(std::string("\x74\x07\x02\x08\x00\x04\x00\x00\x00\x03", 10)));
    ASSERT_TRUE(request.isAnsweredBy(frame));
    const Answer answer = request.answer(frame);
    EXPECT_EQ(answer.code, 0x08000400U);
    EXPECT_EQ(answer.text, "Error 0x8000400");
    EXPECT_EQ(answer.payload, std::string("\0\0\x03", 3));
}

} // namespace
} // namespace station
