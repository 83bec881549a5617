#include "requests/MalformedRequests.h"

#include <cstdint>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t kMemoryMalformed = 0x08001000;
constexpr std::uint32_t kAudioError = 0x50010000;

struct Row {
    std::string request;
    std::uint32_t code = kGenericError;
};

const std::vector<Row>& lines() {
    static const std::vector<Row> rows = {
        {"memory"},
        {"memory read 8bit 1"},
        {"memory read 9bit 1 0"},
        {"memory fill 8bit 1 0"},
        {"memory write 8bit 1 0"},
        {"memory write 8bit 4 0 hex(00)"},
        {"memory write 8bitcrc 1 0 hex(00)"},
        {"diag"},
        {"diag cksum 0 0"},
        {"diag cksum 0 0 4 4"},
        {"diag sum 0 0 4"},
        {"i2c"},
        {"i2c scan"},
        {"i2c read 0 1"},
        {"i2c getattributes 0"},
        {"i2c setattributes 0 1"},
        {"i2c write 0 80"},
        {"port"},
        {"port toggle 1"},
        {"port read"},
        {"port read 1 2"},
        {"port write 3"},
        {"blockdev"},
        {"blockdev open 179"},
        {"blockdev open 179 0 0"},
        {"blockdev read 179 0"},
        {"blockdev write 179 0 0 1"},
        {"blockdev format 179 0"},
        {"exec"},
        {"exec command 5"},
        {"exec run 5 true"},
        {"exec command 5 true true"},
        {"audio", kAudioError},
        {"audio activate now", kAudioError},
        {"audio mute"},
        {"status 09"},
        {"status \"\x7F\""},
    };
    return rows;
}

const std::vector<Row>& frames() {
    static const std::vector<Row> rows = {
        {{'t', 9, 0}, kMemoryMalformed},
        {{'t', 0, 1}, kMemoryMalformed},
        {{'t', 6, 1, 0, 0, 0, 0}, kMemoryMalformed},
        {{'t', 1, 1, 0, 0, 0, 0}, kMemoryMalformed},
        {{'t', 7, 1, 0, 0, 0, 0, 0, 0}, kMemoryMalformed},
        {{'D', 8, 0}},
        {{'D', 9, 0}},
        {{'D', 9, 0, 0, 0, 0, 0, 0, 0, 0, 4, 0}},
        {{'i', 0, 1}},
        {{'i', '\xFF', 0, 0, 0}},
        {{'I', 0, 1}},
        {{'I', 0, 5, 0x50, 1}},
        {{'I', 0, 0, 0x50, 1}},
        {{'I', '\xFF', 0, 1, 0}},
        {{'I', '\xFF', 0, 0, 0, 0}},
        {{'p', '\xE2', 0}},
        {{'p', '\xE3', 2}},
        {{'p', '\xE3', 0, 0}},
        {{'p', '\xE3', 1, 0, 0}},
        {{'P', '\xE3', 0}},
        {{'P', '\xE3', 1, 3}},
        {{'m', '\xB3', 0}},
        {{'m', '\xB3', 0, 5}},
        {{'m', '\xB3', 0, 1, 0}},
        {{'m', '\xB3', 0, 3}},
        {{'c', 1, 0}},
        {{'c', 2, 0, 5, 't', 'r', 'u', 'e'}},
        {{'c', 1, 0, 5, 'a', '\t', 'b'}},
        {{'E', '\x80', 1, 0}, kAudioError},
        {{'E', '\x81', 1}, kAudioError},
        {{'s', 1, 0}},
    };
    return rows;
}

} // namespace

Exchange malformedRequest(Dice& dice) {
    const Row& line = dice.oneOf(lines());
    const Row& frame = dice.oneOf(frames());
    return {line.request, Expected::refusal(line.code), frame.request, Expected::refusal(frame.code)};
}
