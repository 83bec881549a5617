#include "requests/UnitRequests.h"

#include <array>
#include <cstdint>
#include <cstdlib>

#include "requests/Notation.h"
#include "support/BinaryFrames.h"
#include "support/UnitFiles.h"

namespace {

constexpr std::array<std::uint32_t, 3> kChips = {0x50, 0x48, 0x20};
constexpr std::uint32_t kMostRead = 247;
constexpr std::uint32_t kBusError = 0x07000001;
constexpr std::uint32_t kNoSuchBus = 0x07000005;
constexpr std::uint32_t kUnknownAttribute = 0x0700000B;
constexpr std::uint32_t kSpeedError = 0x0700000D;

constexpr char kPortCommand = '\xE3';
constexpr std::uint32_t kPorts = 21;
constexpr std::array<std::uint32_t, 11> kOutputs = {0, 3, 4, 5, 6, 10, 13, 16, 17, 18, 20};
constexpr std::array<std::uint32_t, 10> kInputs = {1, 2, 7, 8, 9, 11, 12, 14, 15, 19};
constexpr std::size_t kConfigBytes = 13;
constexpr std::uint32_t kPortRange = 0x27000010;
constexpr std::uint32_t kNotAnOutput = 0x27000040;
constexpr std::uint32_t kWriteFailed = 0x27010000;

constexpr std::uint32_t kWlanChannel = 240;
constexpr std::uint32_t kChannelFailed = 0x0A000000;
constexpr std::uint32_t kNoSuchChannel = 0x0A000004;
constexpr std::uint32_t kNoSuchParity = 0x0A000008;
constexpr std::uint32_t kReadSize = 0x10;

constexpr std::uint32_t kNoSuchOutput = 0x49000002;
constexpr std::uint32_t kNoSuchPicture = 0x49000004;

constexpr std::uint32_t kInvalidState = 0x50000001;
constexpr std::uint32_t kUnknownName = 0x10;

/// The same refusal in both forms.
Exchange refused(const std::string& line, const std::string& frame, std::uint32_t code) {
    return {line, Expected::refusal(code), frame, Expected::refusal(code)};
}

} // namespace

Exchange UnitRequests::i2c() {
    switch (m_dice.below(6)) {
        case 0:
        case 1:
            return i2cRead();
        case 2:
            return i2cWrite();
        case 3:
            return i2cAttribute();
        default:
            return i2cRefused();
    }
}

Exchange UnitRequests::i2cRead() {
    const std::uint32_t chip = m_dice.oneOf(kChips);
    const std::uint32_t count = m_dice.between(1, kMostRead);
    const std::string first = m_dice.oneIn(2) ? m_dice.bytes(m_dice.between(1, 8)) : "";
    return {"i2c read 0 " + anyNumber(m_dice, count) + " " + anyNumber(m_dice, chip) +
                (first.empty() ? "" : " " + anyData(m_dice, first)),
            Expected::bytes(count), std::string{'i', 0, asByte(count), asByte(chip)} + first,
            Expected::bytes(count)};
}

Exchange UnitRequests::i2cWrite() {
    const std::uint32_t chip = m_dice.oneOf(kChips);
    const std::string data = m_dice.bytes(m_dice.between(0, 250));
    // In a frame the chip's address is the first of the bytes at the same time.
    return {
        "i2c write 0 " + anyNumber(m_dice, chip) + " " + anyData(m_dice, asByte(chip) + data),
        Expected::exactly("ok"),
        std::string{'I', 0, asByte(static_cast<std::uint32_t>(data.size()) + 1), asByte(chip)} + data,
        Expected::exactly("")};
}

Exchange UnitRequests::i2cAttribute() {
    const bool fast = m_dice.oneIn(2);
    switch (m_dice.below(4)) {
        case 0:
            return {
                "i2c getattributes 0 0", Expected::bytes(1), {'i', '\xFF', 0, 0}, Expected::bytes(1)};
        case 1:
            return {
                "i2c getattributes 0 1", Expected::bytes(2), {'i', '\xFF', 0, 1}, Expected::bytes(2)};
        case 2:
            return {fast ? "i2c setattributes 0 0 01" : "i2c setattributes 0 0 00",
                    Expected::exactly("ok"),
                    {'I', '\xFF', 0, 0, fast ? '\1' : '\0'},
                    Expected::exactly("")};
        default:
            return {fast ? "i2c setattributes 0 1 0190" : "i2c setattributes 0 1 0064",
                    Expected::exactly("ok"),
                    std::string{'I', '\xFF', 0, 1} + bigEndian16(fast ? 400 : 100),
                    Expected::exactly("")};
    }
}

Exchange UnitRequests::i2cRefused() {
    const std::uint32_t other = m_dice.between(1, 254);
    const std::string otherText = anyNumber(m_dice, other);
    const std::uint32_t tooMany = m_dice.oneIn(4) ? 0 : m_dice.between(kMostRead + 1, 255);
    const std::uint32_t nobody = m_dice.between(0x51, 0x7F);
    const std::string nobodyText = anyNumber(m_dice, nobody);
    switch (m_dice.below(8)) {
        case 0:
            return refused("i2c read " + otherText + " 1 0x50", {'i', asByte(other), 1, 0x50},
                           kNoSuchBus);
        case 1:
            return refused("i2c write " + otherText + " 0x50 hex(00)", {'I', asByte(other), 1, 0x50},
                           kNoSuchBus);
        case 2:
            return refused("i2c read 0 " + anyNumber(m_dice, tooMany) + " 0x50",
                           {'i', 0, asByte(tooMany), 0x50}, kGenericError);
        case 3:
            return refused("i2c read 0 4 " + nobodyText, {'i', 0, 4, asByte(nobody)}, kBusError);
        case 4:
            return refused("i2c write 0 " + nobodyText + " hex(0011)", {'I', 0, 2, asByte(nobody), 0x11},
                           kBusError);
        case 5:
            return refused("i2c getattributes 0 " + anyNumber(m_dice, other + 1),
                           {'i', '\xFF', 0, asByte(other + 1)}, kUnknownAttribute);
        case 6:
            return refused("i2c setattributes 0 0 02", {'I', '\xFF', 0, 0, 2}, kGenericError);
        default:
            return refused("i2c setattributes 0 1 00C8",
                           std::string{'I', '\xFF', 0, 1} + bigEndian16(200), kSpeedError);
    }
}

Exchange UnitRequests::port() {
    switch (m_dice.below(4)) {
        case 0:
            return portRead();
        case 1:
            return portWrite();
        case 2:
            return portRefused();
        default:
            return {"port getattributes",
                    Expected::bytes(kConfigBytes, {0, kPorts}),
                    {'p', kPortCommand, 0},
                    Expected::bytes(kConfigBytes, {0, kPorts})};
    }
}

Exchange UnitRequests::portRead() {
    const std::uint32_t number = m_dice.below(kPorts);
    const Expected both = Expected::bytes(2, {asByte(number)});
    return {
        "port read " + anyNumber(m_dice, number), both, {'p', kPortCommand, 1, asByte(number)}, both};
}

Exchange UnitRequests::portWrite() {
    const std::uint32_t number = m_dice.oneOf(kOutputs);
    const std::uint32_t level = m_dice.below(256);
    return {"port write " + anyNumber(m_dice, number) + ((level & 4) != 0 ? " 1" : " 0"),
            Expected::exactly("ok"),
            {'P', kPortCommand, 1, asByte(number), asByte(level)},
            Expected::exactly("")};
}

Exchange UnitRequests::portRefused() {
    const std::uint32_t beyond = m_dice.between(kPorts, 255);
    const std::uint32_t input = m_dice.oneOf(kInputs);
    switch (m_dice.below(4)) {
        case 0:
            return refused("port read " + anyNumber(m_dice, beyond),
                           {'p', kPortCommand, 1, asByte(beyond)}, kPortRange);
        case 1:
            return refused("port write " + anyNumber(m_dice, beyond) + " 1",
                           {'P', kPortCommand, 1, asByte(beyond), 4}, kPortRange);
        case 2:
            return refused("port write " + anyNumber(m_dice, input) + " 0",
                           {'P', kPortCommand, 1, asByte(input), 0}, kNotAnOutput);
        default: {
            // A frame has no level that is none.
            Exchange exchange =
                refused("port write 3 x", {'P', kPortCommand, 1, asByte(input), 4}, kNotAnOutput);
            exchange.lineExpected = Expected::refusal(kWriteFailed);
            return exchange;
        }
    }
}

Exchange UnitRequests::audio() {
    if (m_dice.oneIn(3))
        return {"audio toggle",
                Expected::refusal(kGenericError),
                {'E', '\x80', asByte(m_dice.between(2, 255))},
                Expected::refusal(kInvalidState)};
    const bool active = m_dice.oneIn(2);
    return {active ? "audio activate" : "audio deactivated",
            Expected::exactly("ok"),
            {'E', '\x80', active ? '\1' : '\0'},
            Expected::exactly("")};
}

Exchange UnitRequests::serial() {
    // Nobody closes these.
    constexpr std::array<std::uint32_t, 3> kChannels = {1, 2, kWlanChannel};
    const std::uint32_t channel = m_dice.oneOf(kChannels);
    if (m_dice.oneIn(2))
        return serialRefused();
    return {"serial open " + anyNumber(m_dice, channel) + " 115200 0", Expected::exactly("ok"),
            std::string{'S', 0, asByte(channel)} + bigEndian32(115200) + '\0', Expected::exactly("")};
}

Exchange UnitRequests::serialRefused() {
    const std::uint32_t nobody = m_dice.between(4, kWlanChannel - 1);
    const std::string nobodyText = anyNumber(m_dice, nobody);
    const std::uint32_t tooMany = m_dice.oneIn(4) ? 0 : m_dice.between(243, 255);
    switch (m_dice.below(6)) {
        case 0:
            return refused("serial open " + nobodyText + " 9600 0",
                           std::string{'S', 0, asByte(nobody)} + bigEndian32(9600) + '\0',
                           kNoSuchChannel);
        case 1:
            return refused("serial open 2 9600 2", std::string{'S', 0, 2} + bigEndian32(9600) + '\2',
                           kNoSuchParity);
        case 2:
            return refused("serial close " + nobodyText, {'S', 1, asByte(nobody)}, kChannelFailed);
        case 3:
            return refused("serial send " + nobodyText + " hex(00)", {'S', 2, asByte(nobody), 0},
                           kChannelFailed);
        case 4:
            return refused("serial getall " + nobodyText, {'S', 4, asByte(nobody)}, kChannelFailed);
        default:
            return refused("serial get 1 " + anyNumber(m_dice, tooMany), {'S', 3, 1, asByte(tooMany)},
                           kReadSize);
    }
}

Exchange UnitRequests::graphic() {
    const std::uint32_t beyond = m_dice.between(3, 255);
    const std::string beyondText = anyNumber(m_dice, beyond);
    // It runs seven programs, one after the other.
    if (m_dice.oneIn(16))
        return {
            "graphic display 0 1", Expected::exactly("ok"), {'G', '\xA0', 0, 1}, Expected::exactly("")};
    switch (m_dice.below(4)) {
        case 0:
            return refused("graphic display " + beyondText + " 0", {'G', '\xA0', asByte(beyond), 0},
                           kNoSuchOutput);
        case 1:
            return refused("graphic display 2 " + beyondText, {'G', '\xA0', 2, asByte(beyond)},
                           kNoSuchPicture);
        case 2:
            return refused("graphic display 1 0", {'G', '\xA0', 1, 0}, kNoSuchOutput);
        default:
            return refused("graphic wipe 0 0", {'G', '\x10', 0, 0}, kGenericError);
    }
}

Exchange UnitRequests::exec() {
    struct Row {
        std::string command;
        std::string output;
        bool succeeds;
    };
    const std::string mark = "s" + std::to_string(m_number) + "n" + std::to_string(++m_drawn);
    // How a command ends is not told, unless a signal ends it.
    const Row rows[] = {{"true", "", true},
                        {"false", "", true},
                        {"echo " + mark, mark + "\n", true},
                        {"kill -9 $$", "", false}};
    const Row& row = m_dice.oneOf(rows);
    constexpr unsigned kLimitSeconds = 60;
    const std::string line = "exec command 60 \"" + row.command + "\"";
    const std::string frame = execRequest(kLimitSeconds, row.command).substr(1);
    if (!row.succeeds)
        return refused(line, frame, kGenericError);
    return {line, Expected::exactly(base64Text(row.output)), frame, Expected::exactly(row.output)};
}

Exchange UnitRequests::status() {
    const std::string serialNumber = contentOf(kSerialNumberFile);
    const std::string imageVersion = contentOf(kImageVersionFile);
    switch (m_dice.below(5)) {
        case 0: {
            const std::string frame = statusFrame(m_buildStamp, true);
            constexpr std::size_t kEcho = 3;
            constexpr std::size_t kPayload = 8;
            return {"status", Expected::exactly("\"" + m_buildStamp + "\" A024 \"1A\" 4"), "s",
                    Expected::exactly(frame.substr(kPayload)), frame.substr(1, kEcho)};
        }
        case 1:
            return {"status 01", Expected::exactly(base64Text(imageVersion)), "s\1",
                    Expected::exactly(imageVersion)};
        case 2:
            return {"status 02", Expected::exactly(base64Text(serialNumber)), "s\2",
                    Expected::exactly(serialNumber)};
        case 3:
            return {"status 03", Expected::exactly(base64Text(contentOf(kApplicationVersionFile))),
                    "s\3", Expected::unanswered()};
        default:
            return refused("status 05", {'s', 1, 0}, kGenericError);
    }
}

Exchange UnitRequests::acknowledgement() {
    return {"ack", Expected::nothing(), "\6", Expected::nothing()};
}

Exchange UnitRequests::unknown() {
    constexpr std::uint32_t kLongestFrame = 255;
    constexpr char kNobody[] = {'x', 'y', 'z', 'Q'};
    const std::string name = "u" + std::to_string(m_number) + "n" + std::to_string(++m_drawn);
    const char id = m_dice.oneOf(kNobody);
    const std::string text = "No Handler for the Command ";
    return {name + " " + anyNumber(m_dice, m_dice.below(1000)),
            Expected::refusal(kUnknownName, text + name),
            id + m_dice.bytes(m_dice.between(2, kLongestFrame - 2)),
            Expected::refusal(kGenericError, text + id)};
}
