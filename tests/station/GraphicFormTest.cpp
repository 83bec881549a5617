#include "FormTables.h"

namespace station {
namespace {

using testing::Values;

FormCommand graphic(std::vector<std::string> arguments) {
    return {"graphic", std::move(arguments)};
}

INSTANTIATE_TEST_SUITE_P(Graphic, FormIsSent,
                         Values(SentForm{graphic({"display", "0", "1"}), "05 47 A0 00 01"},
                                SentForm{graphic({"displays", "0x02", "02"}), "05 47 A0 02 02"},
                                // The unit ignores what follows.
                                SentForm{graphic({"display", "255", "3", "more"}), "05 47 A0 FF 03"},
                                SentForm{graphic({"capture", "3", "0"}), "06 47 A1 00 03 00"},
                                SentForm{graphic({"captured", "2", "1", "0"}), "06 47 A1 00 02 01"}));

INSTANTIATE_TEST_SUITE_P(
    Graphic, FormIsRefused,
    Values(RefusedForm{graphic({}),
                       "graphic has the binary forms graphic display OUTPUT PICTURE and graphic "
                       "capture INPUT OUTPUT"},
           RefusedForm{graphic({"display"}), "graphic has the binary forms"},
           RefusedForm{graphic({"display", "0"}), "graphic has the binary forms"},
           RefusedForm{graphic({"capture", "3"}), "graphic has the binary forms"},
           RefusedForm{graphic({"Display", "0", "1"}), "graphic has the binary forms"},
           RefusedForm{graphic({"show", "0", "1"}), "graphic has the binary forms"},
           RefusedForm{graphic({"display", "256", "1"}), "OUTPUT has to be a number from 0 to 255"},
           RefusedForm{graphic({"display", "0", "grey"}), "PICTURE has to be a number from 0 to 255"},
           RefusedForm{graphic({"capture", "-1", "0"}), "INPUT has to be a number from 0 to 255"},
           RefusedForm{graphic({"capture", "3", "256"}), "OUTPUT has to be a number from 0 to 255"}));

INSTANTIATE_TEST_SUITE_P(Graphic, FormIsShown,
                         Values(ShownForm{graphic({"display", "0", "1"}), "", "ok"},
                                ShownForm{graphic({"capture", "3", "0"}), "", "ok"}));

INSTANTIATE_TEST_SUITE_P(
    Graphic, FormIsMalformed,
    Values(MalformedForm{graphic({"display", "0", "1"}), "00", "0 bytes, and not 1"},
           MalformedForm{graphic({"capture", "3", "0"}), "00", "0 bytes, and not 1"}));

} // namespace
} // namespace station
