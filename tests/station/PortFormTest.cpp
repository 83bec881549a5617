#include "FormTables.h"

namespace station {
namespace {

using testing::Values;

FormCommand port(std::vector<std::string> arguments) {
    return {"port", std::move(arguments)};
}

constexpr char kAllPorts[] = "00 15 57 15 77 33 51 11 71 57 73 53 07";

INSTANTIATE_TEST_SUITE_P(Port, FormIsSent,
                         Values(SentForm{port({"read", "3"}), "05 70 E3 01 03"},
                                SentForm{port({"reading", "0x14"}), "05 70 E3 01 14"},
                                SentForm{port({"getattributes"}), "04 70 E3 00"},
                                SentForm{port({"getattributesofall", "whatever"}), "04 70 E3 00"},
                                SentForm{port({"write", "3", "0"}), "06 50 E3 01 03 00"},
                                SentForm{port({"write", "18", "1"}), "06 50 E3 01 12 04"},
                                // The first character counts.
                                SentForm{port({"writes", "3", "10"}), "06 50 E3 01 03 04"},
                                SentForm{port({"write", "3", "0x1"}), "06 50 E3 01 03 00"},
                                SentForm{port({"write", "3", "hex(31)"}), "06 50 E3 01 03 04"},
                                // No such port, an input: for the unit to say.
                                SentForm{port({"read", "21"}), "05 70 E3 01 15"},
                                SentForm{port({"read", "255"}), "05 70 E3 01 FF"},
                                SentForm{port({"write", "1", "1"}), "06 50 E3 01 01 04"}));

INSTANTIATE_TEST_SUITE_P(
    Port, FormIsRefused,
    Values(
        RefusedForm{port({}),
                    "port has the binary forms port read N, port getattributes and port write N LEVEL"},
        RefusedForm{port({"read"}), "port has the binary forms"},
        RefusedForm{port({"read", "1", "2"}), "port has the binary forms"},
        RefusedForm{port({"write", "1"}), "port has the binary forms"},
        RefusedForm{port({"write", "1", "1", "1"}), "port has the binary forms"},
        RefusedForm{port({"rea", "1"}), "port has the binary forms"},
        RefusedForm{port({"Read", "1"}), "port has the binary forms"},
        RefusedForm{port({"getattribute"}), "port has the binary forms"},
        RefusedForm{port({"read", "256"}), "N has to be a number from 0 to 255"},
        RefusedForm{port({"read", "usb_pwr_1"}), "and not 'usb_pwr_1'"},
        RefusedForm{port({"write", "256", "1"}), "N has to be a number from 0 to 255"},
        RefusedForm{port({"write", "3", "high"}), "port write takes the level 0 or 1, and not 'high'"}));

INSTANTIATE_TEST_SUITE_P(Port, FormIsShown,
                         Values(ShownForm{port({"read", "3"}), "03 07", "hex(0307)"},
                                ShownForm{port({"getattributes"}), kAllPorts,
                                          "hex(00155715773351117157735307)"},
                                ShownForm{port({"getattributes"}), "00 00", "hex(0000)"},
                                ShownForm{port({"getattributes"}), "00 02 57", "hex(000257)"},
                                ShownForm{port({"write", "3", "1"}), "", "ok"}));

INSTANTIATE_TEST_SUITE_P(Port, FormIsMalformed,
                         Values(MalformedForm{port({"read", "3"}), "03", "2 bytes, and not 1"},
                                MalformedForm{port({"read", "3"}), "03 07 00", "2 bytes, and not 3"},
                                MalformedForm{port({"getattributes"}), "", "2 bytes, and not 0"},
                                MalformedForm{port({"getattributes"}), "00", "2 bytes, and not 1"},
                                MalformedForm{port({"getattributes"}), "00 03 57", "4 bytes, and not 3"},
                                MalformedForm{port({"getattributes"}), "01 00 57",
                                              "130 bytes, and not 3"},
                                MalformedForm{port({"write", "3", "1"}), "03", "0 bytes, and not 1"}));

} // namespace
} // namespace station
