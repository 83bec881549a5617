#include "FormTables.h"

namespace station {
namespace {

const SentForm kSent[] = {
    {"diag cksum 0 0x12345678 0x9ABCDEF0", "0C 44 09 00 12 34 56 78 9A BC DE F0"},
    {"diag cksum 0 0x100 4", "0C 44 09 00 00 00 01 00 00 00 00 04"},
    {"diag cksummed 255 010 0", "0C 44 09 FF 00 00 00 08 00 00 00 00"},
};
const RefusedForm kRefused[] = {
    {"diag", "diag has one binary form: diag cksum TYPE OFFSET LENGTH"},
    {"diag cksum 0 0", "diag has one binary form"},
    {"diag cksum 0 0 4 5", "diag has one binary form"},
    {"diag cksu 0 0 4", "diag has one binary form"},
    {"diag cksum 256 0 4", "TYPE has to be a number from 0 to 255"},
    {"diag cksum 0 x 4", "OFFSET has to be a number from 0 to 4294967295"},
    {"diag cksum 0 0 4294967296", "LENGTH has to be a number from 0 to 4294967295"},
};
const ShownForm kShown[] = {
    {"diag cksum 0 0 4", "12 34 56 78", "cksum base64(EjRWeA==)"},
};
const MalformedForm kMalformed[] = {
    {"diag cksum 0 0 4", "12 34 56", "4 bytes, and not 3"},
    {"diag cksum 0 0 4", "12 34 56 78 9A", "4 bytes, and not 5"},
    {"diag cksum 0 0 4", "", "4 bytes, and not 0"},
};

FORM_TESTS(Diag);

} // namespace
} // namespace station
