#include "FormTables.h"

namespace station {
namespace {

using testing::Values;

FormCommand diag(std::vector<std::string> arguments) {
    return {"diag", std::move(arguments)};
}

INSTANTIATE_TEST_SUITE_P(
    Diag, FormIsSent,
    Values(SentForm{diag({"cksum", "0", "0x12345678", "0x9ABCDEF0"}),
                    "0C 44 09 00 12 34 56 78 9A BC DE F0"},
           SentForm{diag({"cksum", "0", "0x100", "4"}), "0C 44 09 00 00 00 01 00 00 00 00 04"},
           SentForm{diag({"cksummed", "255", "010", "0"}), "0C 44 09 FF 00 00 00 08 00 00 00 00"}));

INSTANTIATE_TEST_SUITE_P(
    Diag, FormIsRefused,
    Values(RefusedForm{diag({}), "diag has one binary form: diag cksum TYPE OFFSET LENGTH"},
           RefusedForm{diag({"cksum", "0", "0"}), "diag has one binary form"},
           RefusedForm{diag({"cksum", "0", "0", "4", "5"}), "diag has one binary form"},
           RefusedForm{diag({"cksu", "0", "0", "4"}), "diag has one binary form"},
           RefusedForm{diag({"cksum", "256", "0", "4"}), "TYPE has to be a number from 0 to 255"},
           RefusedForm{diag({"cksum", "0", "x", "4"}), "OFFSET has to be a number from 0 to 4294967295"},
           RefusedForm{diag({"cksum", "0", "0", "4294967296"}),
                       "LENGTH has to be a number from 0 to 4294967295"}));

INSTANTIATE_TEST_SUITE_P(Diag, FormIsShown,
                         Values(ShownForm{diag({"cksum", "0", "0", "4"}), "12 34 56 78",
                                          "cksum base64(EjRWeA==)"}));

INSTANTIATE_TEST_SUITE_P(
    Diag, FormIsMalformed,
    Values(MalformedForm{diag({"cksum", "0", "0", "4"}), "12 34 56", "4 bytes, and not 3"},
           MalformedForm{diag({"cksum", "0", "0", "4"}), "12 34 56 78 9A", "4 bytes, and not 5"},
           MalformedForm{diag({"cksum", "0", "0", "4"}), "", "4 bytes, and not 0"}));

} // namespace
} // namespace station
