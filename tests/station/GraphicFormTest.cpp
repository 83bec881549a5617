#include "FormTables.h"

namespace station {
namespace {

const SentForm kSent[] = {
    {"graphic display 0 1", "05 47 A0 00 01"},
    {"graphic displays 0x02 02", "05 47 A0 02 02"},
    // The unit ignores what follows.
    {"graphic display 255 3 more", "05 47 A0 FF 03"},
    {"graphic capture 3 0", "06 47 A1 00 03 00"},
    {"graphic captured 2 1 0", "06 47 A1 00 02 01"},
};
const RefusedForm kRefused[] = {
    {"graphic",
     "graphic has the binary forms graphic display OUTPUT PICTURE and graphic capture INPUT OUTPUT"},
    {"graphic display", "graphic has the binary forms"},
    {"graphic display 0", "graphic has the binary forms"},
    {"graphic capture 3", "graphic has the binary forms"},
    {"graphic Display 0 1", "graphic has the binary forms"},
    {"graphic show 0 1", "graphic has the binary forms"},
    {"graphic display 256 1", "OUTPUT has to be a number from 0 to 255"},
    {"graphic display 0 grey", "PICTURE has to be a number from 0 to 255"},
    {"graphic capture -1 0", "INPUT has to be a number from 0 to 255"},
    {"graphic capture 3 256", "OUTPUT has to be a number from 0 to 255"},
};
const ShownForm kShown[] = {
    {"graphic display 0 1", "", "ok"},
    {"graphic capture 3 0", "", "ok"},
};
const MalformedForm kMalformed[] = {
    {"graphic display 0 1", "00", "0 bytes, and not 1"},
    {"graphic capture 3 0", "00", "0 bytes, and not 1"},
};

FORM_TESTS(Graphic);

} // namespace
} // namespace station
