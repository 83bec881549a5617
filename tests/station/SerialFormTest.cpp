#include "FormTables.h"

namespace station {
namespace {

/// So many zero bytes as base64, for a number that is no multiple of three.
std::string zerosInBase64(std::size_t count) {
    return std::string(count / 3 * 4, 'A') + (count % 3 == 1 ? "AA==" : "AAA=");
}

const SentForm kSent[] = {
    {"serial open 1 115200 0", "09 53 00 01 00 01 C2 00 00"},
    {"serial open 0 9600 0x0F", "09 53 00 00 00 00 25 80 0F"},
    {"serial opened 02 0x12345678 255", "09 53 00 02 12 34 56 78 FF"},
    // The unit ignores what follows.
    {"serial open 2 50 1 more", "09 53 00 02 00 00 00 32 01"},
    // No such channel, no such speed: for the unit to say.
    {"serial open 239 4294967295 2", "09 53 00 EF FF FF FF FF 02"},
    {"serial open 240", "04 53 00 F0"},
    {"serial open 0xF1", "04 53 00 F1"},
    {"serial open 241 fast", "04 53 00 F1"},
    {"serial close 1", "04 53 01 01"},
    {"serial closed 240", "04 53 01 F0"},
    {"serial send 1 'hex(41 54 0D)'", "07 53 02 01 41 54 0D"},
    {"serial send 1 AT", "07 53 02 01 41 54 00"},
    {"serial send 0 base64(QQ==)", "07 53 02 00 41 00 00"},
    {"serial sending 241 'hex(01 03 0C 00)'", "08 53 02 F1 01 03 0C 00"},
    {"serial send 0 " + bytes("5A", 251), "FF 53 02 00 " + repeated("5A", 251)},
    {"serial get 1 9", "05 53 03 01 09"},
    {"serial gets 240 0xF2", "05 53 03 F0 F2"},
    {"serial get 2 0", "05 53 03 02 00"},
    {"serial get 2 255", "05 53 03 02 FF"},
    {"serial getall 1", "04 53 04 01"},
    {"serial getal 241", "04 53 04 F1"},
};
const RefusedForm kRefused[] = {
    {"serial", "serial has the binary forms serial open N BAUD FLAGS"},
    {"serial open", "serial has the binary forms"},
    {"serial open 1", "serial open needs N BAUD FLAGS for a line"},
    {"serial open 1 9600", "serial open needs N BAUD FLAGS for a line"},
    {"serial open 256", "N has to be a number from 0 to 255"},
    {"serial open x 9600 0", "and not 'x'"},
    {"serial open 1 -1 0", "BAUD has to be a number from 0 to 4294967295"},
    {"serial open 1 9600 256", "FLAGS has to be a number from 0 to 255"},
    {"serial close", "serial has the binary forms"},
    {"serial close 1 2", "serial has the binary forms"},
    {"serial send 1", "serial has the binary forms"},
    {"serial send 1 a b", "serial has the binary forms"},
    {"serial send 1 'hex( )'", "DATA holds no byte"},
    {"serial send 1 " + bytes("5A", 252),
     "DATA has 252 bytes, and a binary request holds 251; send it in parts, or use the ASCII form"},
    {"serial get 1", "serial has the binary forms"},
    {"serial get 1 2 3", "serial has the binary forms"},
    {"serial get 1 256", "COUNT has to be a number from 0 to 255"},
    {"serial getall", "serial has the binary forms"},
    {"serial getall 1 2", "serial has the binary forms"},
    {"serial Get 1 2", "serial getall N"},
};
const ShownForm kShown[] = {
    {"serial open 1 115200 0", "", "ok"},
    {"serial open 241", "", "ok"},
    {"serial close 1", "", "ok"},
    {"serial send 1 AT", "", "ok"},
    {"serial get 1 2", "4F 4B", "get 0x01 base64(T0s=)"},
    {"serial get 240 3", "00 00 00", "get 0xF0 base64(AAAA)"},
    {"serial get 241 9", "04 0E 04", "get 0xF1 base64(BA4E)"},
    {"serial get 241 9", "", "get 0xF1 base64()"},
    {"serial getall 010", "41", "getall 0x08 base64(QQ==)"},
    {"serial getall 2", "", "getall 0x02 base64()"},
    {"serial getall 2", repeated("00", 247), "getall 0x02 base64(" + zerosInBase64(247) + ")"},
    {"serial getall 240", repeated("00", 247), "getall 0xF0 base64(" + zerosInBase64(247) + ")"},
    {"serial getall 241", "04", "getall 0xF1 base64(BA==)"},
};
const MalformedForm kMalformed[] = {
    {"serial open 1 115200 0", "00", "0 bytes, and not 1"},
    {"serial close 1", "00", "0 bytes, and not 1"},
    {"serial send 1 AT", "00", "0 bytes, and not 1"},
    {"serial get 1 2", "4F", "2 bytes, and not 1"},
    {"serial get 240 2", "4F 4B 4C", "2 bytes, and not 3"},
    {"serial get 241 1", "04 0E", "expected a payload of at most 1 bytes, and not 2: hex(04 0E)"},
    {"serial getall 240", "00", "247 bytes, and not 1"},
};

FORM_TESTS(Serial);

} // namespace
} // namespace station
