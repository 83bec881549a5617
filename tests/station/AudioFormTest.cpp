#include "FormTables.h"

namespace station {
namespace {

const SentForm kSent[] = {
    {"audio activate", "04 45 80 01"},
    {"audio activated", "04 45 80 01"},
    {"audio deactivate", "04 45 80 00"},
    {"audio deactivated", "04 45 80 00"},
};
const RefusedForm kRefused[] = {
    {"audio", "audio has the binary forms audio activate and audio deactivate"},
    {"audio activ", "audio has the binary forms"},
    {"audio Activate", "audio has the binary forms"},
    {"audio activate now", "audio has the binary forms"},
    {"audio deactivate now", "audio has the binary forms"},
};
const ShownForm kShown[] = {
    {"audio activate", "", "ok"},
    {"audio deactivate", "", "ok"},
};
const MalformedForm kMalformed[] = {
    {"audio activate", "01", "0 bytes, and not 1"},
};

FORM_TESTS(Audio);

} // namespace
} // namespace station
