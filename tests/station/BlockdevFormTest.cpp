#include "FormTables.h"

namespace station {
namespace {

const SentForm kSent[] = {
    {"blockdev open 179 0", "05 6D B3 00 01"},
    {"blockdev opening 0xB4 1", "05 6D B4 01 01"},
    {"blockdev close 178 0", "05 6D B2 00 02"},
    {"blockdev closed 177 1", "05 6D B1 01 02"},
    {"blockdev read 180 1 0x01020304 0x05060708 0x090A0B0C",
     "11 6D B4 01 03 01 02 03 04 05 06 07 08 09 0A 0B 0C"},
    {"blockdev write 179 0 1 2 3", "11 6D B3 00 04 00 00 00 01 00 00 00 02 00 00 00 03"},
    {"blockdev reads 0 0 010 4294967295 0", "11 6D 00 00 03 00 00 00 08 FF FF FF FF 00 00 00 00"},
    {"blockdev writes 255 255 0 0 0", "11 6D FF FF 04 00 00 00 00 00 00 00 00 00 00 00 00"},
};
const RefusedForm kRefused[] = {
    {"blockdev", "blockdev has the binary forms blockdev open TYPE ID"},
    {"blockdev open 179", "blockdev has the binary forms"},
    {"blockdev open 179 0 0", "blockdev has the binary forms"},
    {"blockdev read 179 0 0 1", "blockdev has the binary forms"},
    {"blockdev write 179 0 0 1 0 0", "blockdev write TYPE ID BLOCK COUNT OFFSET"},
    {"blockdev format 179 0", "blockdev has the binary forms"},
    {"blockdev clos 179 0", "blockdev has the binary forms"},
    {"blockdev open usb 0", "TYPE has to be a number from 0 to 255"},
    {"blockdev open 179 256", "ID has to be a number from 0 to 255"},
    {"blockdev read 179 0 4294967296 1 0", "BLOCK has to be"},
    {"blockdev read 179 0 0 -1 0", "COUNT has to be"},
    {"blockdev write 179 0 0 1 end", "OFFSET has to be"},
};
const ShownForm kShown[] = {
    {"blockdev open 179 0", "", "ok"},
    {"blockdev close 179 0", "", "ok"},
    {"blockdev read 179 0 0 8 0", "00 00 80 00", "base64(AACAAA==)"},
    {"blockdev write 179 0 0 1 0", "12 34 56 78", "base64(EjRWeA==)"},
};
const MalformedForm kMalformed[] = {
    {"blockdev open 179 0", "00 00 00 00", "0 bytes, and not 4"},
    {"blockdev close 179 0", "00", "0 bytes, and not 1"},
    {"blockdev read 179 0 0 8 0", "", "4 bytes, and not 0"},
    {"blockdev write 179 0 0 8 0", "00 10 00", "4 bytes, and not 3"},
};

FORM_TESTS(Blockdev);

} // namespace
} // namespace station
