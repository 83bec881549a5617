#include "FormTables.h"

namespace station {
namespace {

const SentForm kSent[] = {
    {"i2c read 0 2 0x48", "05 69 00 02 48"},
    {"i2c read 0 247 0x50 hex(10)", "06 69 00 F7 50 10"},
    {"i2c read 0 1 0x50 'hex(00 1F)'", "07 69 00 01 50 00 1F"},
    {"i2c read 254 1 127 ab", "08 69 FE 01 7F 61 62 00"},
    {"i2c read 0 1 0x50 base64(EA==)", "08 69 00 01 50 10 00 00"},
    {"i2c read 0 1 0x50 " + bytes("5A", 250), "FF 69 00 01 50 " + repeated("5A", 250)},
    // The unit ignores DATA when something follows it.
    {"i2c read 0 1 0x50 hex(10) more", "05 69 00 01 50"},
    // No such bus, no such count: for the unit to say.
    {"i2c read 1 0 0xFF", "05 69 01 00 FF"},
    {"i2c read 0 255 0", "05 69 00 FF 00"},
    {"i2c write 0 0x50 'hex(50 1F)'", "06 49 00 02 50 1F"},
    {"i2c write 0 32 hex(20)", "05 49 00 01 20"},
    {"i2c write 3 0x50 P", "06 49 03 02 50 00"},
    {"i2c write 0 0x50 base64(UB8A)", "07 49 00 03 50 1F 00"},
    {"i2c write 0 0x5A " + bytes("5A", 251), "FF 49 00 FB " + repeated("5A", 251)},
    {"i2c getattributes 0 0", "05 69 FF 00 00"},
    {"i2c getattributes 255 1", "05 69 FF FF 01"},
    {"i2c getattributes 0 9", "05 69 FF 00 09"},
    {"i2c setattributes 0 0 01", "06 49 FF 00 00 01"},
    {"i2c setattributes 0 0 0100", "06 49 FF 00 00 01"},
    {"i2c setattributes 2 1 0190", "07 49 FF 02 01 01 90"},
    {"i2c setattributes 0 1 '00 64'", "07 49 FF 00 01 00 64"},
    // As the unit reads it: zeros for what is missing, an unpaired digit is dropped.
    {"i2c setattributes 0 1 64", "07 49 FF 00 01 64 00"},
    {"i2c setattributes 0 1 0x64", "07 49 FF 00 01 06 00"},
    {"i2c setattributes 0 1 00:c8:FF", "07 49 FF 00 01 00 C8"},
    {"i2c setattributes 0 9 01", "07 49 FF 00 09 01 00"},
};
const RefusedForm kRefused[] = {
    {"i2c", "i2c has the binary forms i2c read BUS COUNT ADDRESS [DATA]"},
    {"i2c read 0 1", "i2c has the binary forms"},
    {"i2c reads 0 1 2", "i2c has the binary forms"},
    {"i2c write 0 1", "i2c has the binary forms"},
    {"i2c write 0 1 hex(01) x", "i2c has the binary forms"},
    {"i2c getattributes 0", "i2c has the binary forms"},
    {"i2c getattributes 0 1 2", "i2c has the binary forms"},
    {"i2c setattributes 0 1", "i2c setattributes BUS ID VALUE"},
    {"i2c read 0 256 0x50", "COUNT has to be a number from 0 to 255"},
    {"i2c read 0 1 0x100", "ADDRESS has to be a number from 0 to 255"},
    {"i2c read 256 1 0", "BUS has to be a number from 0 to 255"},
    {"i2c read 255 1 0", "bus 255 has no binary form"},
    {"i2c write 255 1 hex(01)", "use the ASCII form: --target tcp:HOST:PORT"},
    {"i2c read 0 1 0x50 'hex( )'", "DATA holds no byte"},
    {"i2c write 0 0x50 'hex( )'", "DATA holds no byte"},
    {"i2c read 0 1 0x50 " + bytes("5A", 251),
     "DATA has 251 bytes, and a binary request holds 250; use the ASCII form"},
    {"i2c write 0 0x5A " + bytes("5A", 252),
     "DATA has 252 bytes, and a binary request holds 251; use the ASCII form"},
    {"i2c write 0 0x50 'hex(00 1F)'",
     "DATA has to begin with 50; for other DATA use i2c read BUS COUNT ADDRESS DATA, which writes it and then reads COUNT bytes, or use the ASCII form"},
    {"i2c setattributes 0 0 on",
     "VALUE has to be hexadecimal digits, two for each byte, such as 01 or 0064, and not 'on'"},
    {"i2c setattributes 0 0 1", "and not '1'"},
    {"i2c setattributes 0 0 hex(01)", "VALUE has to be hexadecimal digits"},
    {"i2c setattributes 0 256 01", "ID has to be a number from 0 to 255"},
};
const ShownForm kShown[] = {
    {"i2c read 0 2 0x48", "19 00", "hex(1900)"},
    {"i2c read 0 1 0x50 hex(10)", "FF", "hex(FF)"},
    {"i2c write 0 0x50 'hex(50 1F)'", "", "ok"},
    {"i2c getattributes 0 0", "01", "hex(01)"},
    {"i2c getattributes 0 1", "00 64", "hex(0064)"},
    {"i2c getattributes 0 2", "01 02 03", "hex(010203)"},
    {"i2c setattributes 0 1 0190", "", "ok"},
};
const MalformedForm kMalformed[] = {
    {"i2c read 0 2 0x48", "19", "2 bytes, and not 1"},
    {"i2c read 0 1 0x50 hex(10)", "FF FF", "1 bytes, and not 2"},
    {"i2c write 0 0x50 'hex(50 1F)'", "00", "0 bytes, and not 1"},
    {"i2c getattributes 0 0", "00 64", "1 bytes, and not 2"},
    {"i2c getattributes 0 1", "64", "2 bytes, and not 1"},
    {"i2c setattributes 0 1 0190", "01", "0 bytes, and not 1"},
};

FORM_TESTS(I2c);

} // namespace
} // namespace station
