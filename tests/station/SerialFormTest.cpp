#include "FormTables.h"

namespace station {
namespace {

using testing::Values;

FormCommand serial(std::vector<std::string> arguments) {
    return {"serial", std::move(arguments)};
}

std::string hexOf(const std::string& digits) {
    return "hex(" + digits + ")";
}

/// So many zero bytes as base64, for a number that is no multiple of three.
std::string zerosInBase64(std::size_t count) {
    return std::string(count / 3 * 4, 'A') + (count % 3 == 1 ? "AA==" : "AAA=");
}

INSTANTIATE_TEST_SUITE_P(
    SerialOpen, FormIsSent,
    Values(SentForm{serial({"open", "1", "115200", "0"}), "09 53 00 01 00 01 C2 00 00"},
           SentForm{serial({"open", "0", "9600", "0x0F"}), "09 53 00 00 00 00 25 80 0F"},
           SentForm{serial({"opened", "02", "0x12345678", "255"}), "09 53 00 02 12 34 56 78 FF"},
           // The unit ignores what follows.
           SentForm{serial({"open", "2", "50", "1", "more"}), "09 53 00 02 00 00 00 32 01"},
           // No such channel, no such speed: for the unit to say.
           SentForm{serial({"open", "239", "4294967295", "2"}), "09 53 00 EF FF FF FF FF 02"},
           SentForm{serial({"open", "240"}), "04 53 00 F0"},
           SentForm{serial({"open", "0xF1"}), "04 53 00 F1"},
           SentForm{serial({"open", "241", "fast"}), "04 53 00 F1"}));

INSTANTIATE_TEST_SUITE_P(Serial, FormIsSent,
                         Values(SentForm{serial({"close", "1"}), "04 53 01 01"},
                                SentForm{serial({"closed", "240"}), "04 53 01 F0"},
                                SentForm{serial({"send", "1", "hex(41 54 0D)"}), "07 53 02 01 41 54 0D"},
                                SentForm{serial({"send", "1", "AT"}), "07 53 02 01 41 54 00"},
                                SentForm{serial({"send", "0", "base64(QQ==)"}), "07 53 02 00 41 00 00"},
                                SentForm{serial({"sending", "241", "hex(01 03 0C 00)"}),
                                         "08 53 02 F1 01 03 0C 00"},
                                SentForm{serial({"send", "0", hexOf(repeated("5A", 251))}),
                                         "FF 53 02 00 " + repeated("5A", 251)},
                                SentForm{serial({"get", "1", "9"}), "05 53 03 01 09"},
                                SentForm{serial({"gets", "240", "0xF2"}), "05 53 03 F0 F2"},
                                SentForm{serial({"get", "2", "0"}), "05 53 03 02 00"},
                                SentForm{serial({"get", "2", "255"}), "05 53 03 02 FF"},
                                SentForm{serial({"getall", "1"}), "04 53 04 01"},
                                SentForm{serial({"getal", "241"}), "04 53 04 F1"}));

INSTANTIATE_TEST_SUITE_P(
    Serial, FormIsRefused,
    Values(RefusedForm{serial({}), "serial has the binary forms serial open N BAUD FLAGS"},
           RefusedForm{serial({"open"}), "serial has the binary forms"},
           RefusedForm{serial({"open", "1"}), "serial open needs N BAUD FLAGS for a line"},
           RefusedForm{serial({"open", "1", "9600"}), "serial open needs N BAUD FLAGS for a line"},
           RefusedForm{serial({"open", "256"}), "N has to be a number from 0 to 255"},
           RefusedForm{serial({"open", "x", "9600", "0"}), "and not 'x'"},
           RefusedForm{serial({"open", "1", "-1", "0"}), "BAUD has to be a number from 0 to 4294967295"},
           RefusedForm{serial({"open", "1", "9600", "256"}), "FLAGS has to be a number from 0 to 255"},
           RefusedForm{serial({"close"}), "serial has the binary forms"},
           RefusedForm{serial({"close", "1", "2"}), "serial has the binary forms"},
           RefusedForm{serial({"send", "1"}), "serial has the binary forms"},
           RefusedForm{serial({"send", "1", "a", "b"}), "serial has the binary forms"},
           RefusedForm{serial({"send", "1", "hex( )"}), "DATA holds no byte"},
           RefusedForm{serial({"send", "1", hexOf(repeated("5A", 252))}),
                       "DATA has 252 bytes, and a binary request holds 251; send it in parts, or use "
                       "the ASCII form"},
           RefusedForm{serial({"get", "1"}), "serial has the binary forms"},
           RefusedForm{serial({"get", "1", "2", "3"}), "serial has the binary forms"},
           RefusedForm{serial({"get", "1", "256"}), "COUNT has to be a number from 0 to 255"},
           RefusedForm{serial({"getall"}), "serial has the binary forms"},
           RefusedForm{serial({"getall", "1", "2"}), "serial has the binary forms"},
           RefusedForm{serial({"Get", "1", "2"}), "serial getall N"}));

INSTANTIATE_TEST_SUITE_P(
    Serial, FormIsShown,
    Values(ShownForm{serial({"open", "1", "115200", "0"}), "", "ok"},
           ShownForm{serial({"open", "241"}), "", "ok"}, ShownForm{serial({"close", "1"}), "", "ok"},
           ShownForm{serial({"send", "1", "AT"}), "", "ok"},
           ShownForm{serial({"get", "1", "2"}), "4F 4B", "get 0x01 base64(T0s=)"},
           ShownForm{serial({"get", "240", "3"}), "00 00 00", "get 0xF0 base64(AAAA)"},
           ShownForm{serial({"get", "241", "9"}), "04 0E 04", "get 0xF1 base64(BA4E)"},
           ShownForm{serial({"get", "241", "9"}), "", "get 0xF1 base64()"},
           ShownForm{serial({"getall", "010"}), "41", "getall 0x08 base64(QQ==)"},
           ShownForm{serial({"getall", "2"}), "", "getall 0x02 base64()"},
           ShownForm{serial({"getall", "2"}), repeated("00", 247),
                     "getall 0x02 base64(" + zerosInBase64(247) + ")"},
           ShownForm{serial({"getall", "240"}), repeated("00", 247),
                     "getall 0xF0 base64(" + zerosInBase64(247) + ")"},
           ShownForm{serial({"getall", "241"}), "04", "getall 0xF1 base64(BA==)"}));

INSTANTIATE_TEST_SUITE_P(
    Serial, FormIsMalformed,
    Values(MalformedForm{serial({"open", "1", "115200", "0"}), "00", "0 bytes, and not 1"},
           MalformedForm{serial({"close", "1"}), "00", "0 bytes, and not 1"},
           MalformedForm{serial({"send", "1", "AT"}), "00", "0 bytes, and not 1"},
           MalformedForm{serial({"get", "1", "2"}), "4F", "2 bytes, and not 1"},
           MalformedForm{serial({"get", "240", "2"}), "4F 4B 4C", "2 bytes, and not 3"},
           MalformedForm{serial({"get", "241", "1"}), "04 0E",
                         "expected a payload of at most 1 bytes, and not 2: hex(04 0E)"},
           MalformedForm{serial({"getall", "240"}), "00", "247 bytes, and not 1"}));

} // namespace
} // namespace station
