#include "FormTables.h"

namespace station {
namespace {

constexpr char kAllPorts[] = "00 15 57 15 77 33 51 11 71 57 73 53 07";

const SentForm kSent[] = {
    {"port read 3", "05 70 E3 01 03"},
    {"port reading 0x14", "05 70 E3 01 14"},
    {"port getattributes", "04 70 E3 00"},
    {"port getattributesofall whatever", "04 70 E3 00"},
    {"port write 3 0", "06 50 E3 01 03 00"},
    {"port write 18 1", "06 50 E3 01 12 04"},
    // The first character counts.
    {"port writes 3 10", "06 50 E3 01 03 04"},
    {"port write 3 0x1", "06 50 E3 01 03 00"},
    {"port write 3 hex(31)", "06 50 E3 01 03 04"},
    // No such port, an input: for the unit to say.
    {"port read 21", "05 70 E3 01 15"},
    {"port read 255", "05 70 E3 01 FF"},
    {"port write 1 1", "06 50 E3 01 01 04"},
};
const RefusedForm kRefused[] = {
    {"port", "port has the binary forms port read N, port getattributes and port write N LEVEL"},
    {"port read", "port has the binary forms"},
    {"port read 1 2", "port has the binary forms"},
    {"port write 1", "port has the binary forms"},
    {"port write 1 1 1", "port has the binary forms"},
    {"port rea 1", "port has the binary forms"},
    {"port Read 1", "port has the binary forms"},
    {"port getattribute", "port has the binary forms"},
    {"port read 256", "N has to be a number from 0 to 255"},
    {"port read usb_pwr_1", "and not 'usb_pwr_1'"},
    {"port write 256 1", "N has to be a number from 0 to 255"},
    {"port write 3 high", "port write takes the level 0 or 1, and not 'high'"},
};
const ShownForm kShown[] = {
    {"port read 3", "03 07", "hex(0307)"},
    {"port getattributes", kAllPorts, "hex(00155715773351117157735307)"},
    {"port getattributes", "00 00", "hex(0000)"},
    {"port getattributes", "00 02 57", "hex(000257)"},
    {"port write 3 1", "", "ok"},
};
const MalformedForm kMalformed[] = {
    {"port read 3", "03", "2 bytes, and not 1"},
    {"port read 3", "03 07 00", "2 bytes, and not 3"},
    {"port getattributes", "", "2 bytes, and not 0"},
    {"port getattributes", "00", "2 bytes, and not 1"},
    {"port getattributes", "00 03 57", "4 bytes, and not 3"},
    {"port getattributes", "01 00 57", "130 bytes, and not 3"},
    {"port write 3 1", "03", "0 bytes, and not 1"},
};

FORM_TESTS(Port);

} // namespace
} // namespace station
