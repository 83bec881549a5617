#include "FormTables.h"

namespace station {
namespace {

using testing::Values;

FormCommand audio(std::vector<std::string> arguments) {
    return {"audio", std::move(arguments)};
}

INSTANTIATE_TEST_SUITE_P(Audio, FormIsSent,
                         Values(SentForm{audio({"activate"}), "04 45 80 01"},
                                SentForm{audio({"activated"}), "04 45 80 01"},
                                SentForm{audio({"deactivate"}), "04 45 80 00"},
                                SentForm{audio({"deactivated"}), "04 45 80 00"}));

INSTANTIATE_TEST_SUITE_P(
    Audio, FormIsRefused,
    Values(RefusedForm{audio({}), "audio has the binary forms audio activate and audio deactivate"},
           RefusedForm{audio({"activ"}), "audio has the binary forms"},
           RefusedForm{audio({"Activate"}), "audio has the binary forms"},
           RefusedForm{audio({"activate", "now"}), "audio has the binary forms"},
           RefusedForm{audio({"deactivate", "now"}), "audio has the binary forms"}));

INSTANTIATE_TEST_SUITE_P(Audio, FormIsShown,
                         Values(ShownForm{audio({"activate"}), "", "ok"},
                                ShownForm{audio({"deactivate"}), "", "ok"}));

INSTANTIATE_TEST_SUITE_P(Audio, FormIsMalformed,
                         Values(MalformedForm{audio({"activate"}), "01", "0 bytes, and not 1"}));

} // namespace
} // namespace station
