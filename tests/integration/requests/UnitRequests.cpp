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

/// "ok", or an answer without a payload.
Exchange done(const std::string& line, const std::string& frame) {
    return {line, Expected::exactly("ok"), frame, Expected::exactly("")};
}

/// So many bytes in both forms, of which the first are known.
Exchange answered(const std::string& line, const std::string& frame, std::size_t count,
                  const std::string& first = {}) {
    return {line, Expected::bytes(count, first), frame, Expected::bytes(count, first)};
}

/// The same refusal in both forms.
Exchange refused(const std::string& line, const std::string& frame, std::uint32_t code) {
    return {line, Expected::refusal(code), frame, Expected::refusal(code)};
}

} // namespace

Exchange UnitRequests::i2c() {
    constexpr Request kRequests[] = {&UnitRequests::i2cRead,    &UnitRequests::i2cRead,
                                     &UnitRequests::i2cWrite,   &UnitRequests::i2cAttribute,
                                     &UnitRequests::i2cRefused, &UnitRequests::i2cRefused};
    return (this->*m_dice.oneOf(kRequests))();
}

Exchange UnitRequests::i2cRead() {
    const std::uint32_t chip = m_dice.oneOf(kChips);
    const std::uint32_t count = m_dice.between(1, kMostRead);
    const std::string first = m_dice.oneIn(2) ? m_dice.bytes(m_dice.between(1, 8)) : "";
    return answered("i2c read 0 " + anyNumber(m_dice, count) + " " + anyNumber(m_dice, chip) +
                        (first.empty() ? "" : " " + anyData(m_dice, first)),
                    std::string{'i', 0, asByte(count), asByte(chip)} + first, count);
}

Exchange UnitRequests::i2cWrite() {
    const std::uint32_t chip = m_dice.oneOf(kChips);
    const std::string data = m_dice.bytes(m_dice.between(0, 250));
    // In a frame the chip's address is the first of the bytes at the same time.
    return done(
        "i2c write 0 " + anyNumber(m_dice, chip) + " " + anyData(m_dice, asByte(chip) + data),
        std::string{'I', 0, asByte(static_cast<std::uint32_t>(data.size()) + 1), asByte(chip)} + data);
}

Exchange UnitRequests::i2cAttribute() {
    const bool fast = m_dice.oneIn(2);
    const Exchange rows[] = {
        answered("i2c getattributes 0 0", {'i', '\xFF', 0, 0}, 1),
        answered("i2c getattributes 0 1", {'i', '\xFF', 0, 1}, 2),
        done(fast ? "i2c setattributes 0 0 01" : "i2c setattributes 0 0 00",
             {'I', '\xFF', 0, 0, fast ? '\1' : '\0'}),
        done(fast ? "i2c setattributes 0 1 0190" : "i2c setattributes 0 1 0064",
             std::string{'I', '\xFF', 0, 1} + bigEndian16(fast ? 400 : 100)),
    };
    return m_dice.oneOf(rows);
}

Exchange UnitRequests::i2cRefused() {
    const std::uint32_t other = m_dice.between(1, 254);
    const std::string otherText = anyNumber(m_dice, other);
    const std::string nextText = anyNumber(m_dice, other + 1);
    const std::uint32_t tooMany = m_dice.oneIn(4) ? 0 : m_dice.between(kMostRead + 1, 255);
    const std::string tooManyText = anyNumber(m_dice, tooMany);
    const std::uint32_t nobody = m_dice.between(0x51, 0x7F);
    const std::string nobodyText = anyNumber(m_dice, nobody);
    const Exchange rows[] = {
        refused("i2c read " + otherText + " 1 0x50", {'i', asByte(other), 1, 0x50}, kNoSuchBus),
        refused("i2c write " + otherText + " 0x50 hex(00)", {'I', asByte(other), 1, 0x50}, kNoSuchBus),
        refused("i2c read 0 " + tooManyText + " 0x50", {'i', 0, asByte(tooMany), 0x50}, kGenericError),
        refused("i2c read 0 4 " + nobodyText, {'i', 0, 4, asByte(nobody)}, kBusError),
        refused("i2c write 0 " + nobodyText + " hex(0011)", {'I', 0, 2, asByte(nobody), 0x11},
                kBusError),
        refused("i2c getattributes 0 " + nextText, {'i', '\xFF', 0, asByte(other + 1)},
                kUnknownAttribute),
        refused("i2c setattributes 0 0 02", {'I', '\xFF', 0, 0, 2}, kGenericError),
        refused("i2c setattributes 0 1 00C8", std::string{'I', '\xFF', 0, 1} + bigEndian16(200),
                kSpeedError),
    };
    return m_dice.oneOf(rows);
}

Exchange UnitRequests::port() {
    constexpr Request kRequests[] = {&UnitRequests::portRead, &UnitRequests::portWrite,
                                     &UnitRequests::portRefused, &UnitRequests::portAttributes};
    return (this->*m_dice.oneOf(kRequests))();
}

Exchange UnitRequests::portRead() {
    const std::uint32_t number = m_dice.below(kPorts);
    return answered("port read " + anyNumber(m_dice, number), {'p', kPortCommand, 1, asByte(number)}, 2,
                    {asByte(number)});
}

Exchange UnitRequests::portWrite() {
    const std::uint32_t number = m_dice.oneOf(kOutputs);
    const std::uint32_t level = m_dice.below(256);
    return done("port write " + anyNumber(m_dice, number) + ((level & 4) != 0 ? " 1" : " 0"),
                {'P', kPortCommand, 1, asByte(number), asByte(level)});
}

Exchange UnitRequests::portAttributes() {
    return answered("port getattributes", {'p', kPortCommand, 0}, kConfigBytes, {0, kPorts});
}

Exchange UnitRequests::portRefused() {
    const std::uint32_t beyond = m_dice.between(kPorts, 255);
    const std::string beyondText = anyNumber(m_dice, beyond);
    const std::uint32_t input = m_dice.oneOf(kInputs);
    const std::string inputText = anyNumber(m_dice, input);
    const std::string levelOfInput = {'P', kPortCommand, 1, asByte(input), 4};
    const Exchange rows[] = {
        refused("port read " + beyondText, {'p', kPortCommand, 1, asByte(beyond)}, kPortRange),
        refused("port write " + beyondText + " 1", {'P', kPortCommand, 1, asByte(beyond), 4},
                kPortRange),
        refused("port write " + inputText + " 0", {'P', kPortCommand, 1, asByte(input), 0},
                kNotAnOutput),
        // A frame has no level that is none.
        {"port write 3 x", Expected::refusal(kWriteFailed), levelOfInput,
         Expected::refusal(kNotAnOutput)},
    };
    return m_dice.oneOf(rows);
}

Exchange UnitRequests::audio() {
    if (m_dice.oneIn(3))
        return {"audio toggle",
                Expected::refusal(kGenericError),
                {'E', '\x80', asByte(m_dice.between(2, 255))},
                Expected::refusal(kInvalidState)};
    const bool active = m_dice.oneIn(2);
    return done(active ? "audio activate" : "audio deactivated", {'E', '\x80', active ? '\1' : '\0'});
}

Exchange UnitRequests::serial() {
    // Nobody closes these.
    constexpr std::array<std::uint32_t, 3> kChannels = {1, 2, kWlanChannel};
    const std::uint32_t channel = m_dice.oneOf(kChannels);
    if (m_dice.oneIn(2))
        return serialRefused();
    return done("serial open " + anyNumber(m_dice, channel) + " 115200 0",
                std::string{'S', 0, asByte(channel)} + bigEndian32(115200) + '\0');
}

Exchange UnitRequests::serialRefused() {
    const std::uint32_t nobody = m_dice.between(4, kWlanChannel - 1);
    const std::string nobodyText = anyNumber(m_dice, nobody);
    const std::uint32_t tooMany = m_dice.oneIn(4) ? 0 : m_dice.between(243, 255);
    const std::string tooManyText = anyNumber(m_dice, tooMany);
    const Exchange rows[] = {
        refused("serial open " + nobodyText + " 9600 0",
                std::string{'S', 0, asByte(nobody)} + bigEndian32(9600) + '\0', kNoSuchChannel),
        refused("serial open 2 9600 2", std::string{'S', 0, 2} + bigEndian32(9600) + '\2',
                kNoSuchParity),
        refused("serial close " + nobodyText, {'S', 1, asByte(nobody)}, kChannelFailed),
        refused("serial send " + nobodyText + " hex(00)", {'S', 2, asByte(nobody), 0}, kChannelFailed),
        refused("serial getall " + nobodyText, {'S', 4, asByte(nobody)}, kChannelFailed),
        refused("serial get 1 " + tooManyText, {'S', 3, 1, asByte(tooMany)}, kReadSize),
    };
    return m_dice.oneOf(rows);
}

Exchange UnitRequests::graphic() {
    const std::uint32_t beyond = m_dice.between(3, 255);
    const std::string beyondText = anyNumber(m_dice, beyond);
    // It runs seven programs, one after the other.
    if (m_dice.oneIn(16))
        return done("graphic display 0 1", {'G', '\xA0', 0, 1});
    const Exchange rows[] = {
        refused("graphic display " + beyondText + " 0", {'G', '\xA0', asByte(beyond), 0}, kNoSuchOutput),
        refused("graphic display 2 " + beyondText, {'G', '\xA0', 2, asByte(beyond)}, kNoSuchPicture),
        refused("graphic display 1 0", {'G', '\xA0', 1, 0}, kNoSuchOutput),
        refused("graphic wipe 0 0", {'G', '\x10', 0, 0}, kGenericError),
    };
    return m_dice.oneOf(rows);
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
    constexpr std::size_t kEcho = 3;
    constexpr std::size_t kPayload = 8;
    const std::string frame = statusFrame(m_buildStamp, true);
    const std::string serialNumber = contentOf(kSerialNumberFile);
    const std::string imageVersion = contentOf(kImageVersionFile);
    const std::string applicationVersion = contentOf(kApplicationVersionFile);
    const Exchange rows[] = {
        {"status", Expected::exactly("\"" + m_buildStamp + "\" A024 \"1A\" 4"), "s",
         Expected::exactly(frame.substr(kPayload)), frame.substr(1, kEcho)},
        {"status 01", Expected::exactly(base64Text(imageVersion)), "s\1",
         Expected::exactly(imageVersion)},
        {"status 02", Expected::exactly(base64Text(serialNumber)), "s\2",
         Expected::exactly(serialNumber)},
        {"status 03", Expected::exactly(base64Text(applicationVersion)), "s\3", Expected::unanswered()},
        refused("status 05", {'s', 1, 0}, kGenericError),
    };
    return m_dice.oneOf(rows);
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
