#include <limits>

#include "client/Hex.h"
#include "client/RequestFrame.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Bytes.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"
#include "wire/Frame.h"

namespace station {

namespace {

// i2c read BUS COUNT ADDRESS [DATA]      LL 69 BUS COUNT ADDRESS DATA
// i2c write BUS ADDRESS DATA             LL 49 BUS COUNT DATA, for DATA that begins with ADDRESS
// i2c getattributes BUS ID               05 69 FF BUS ID
// i2c setattributes BUS ID VALUE         06 49 FF BUS ID VALUE, 07 for a VALUE of two bytes

constexpr unsigned char kReadId = 'i';
constexpr unsigned char kWriteId = 'I';
constexpr unsigned kAttributes = 0xFF; // in place of a bus
constexpr unsigned kStopCondition = 0;
constexpr unsigned kBusSpeed = 1;

constexpr std::size_t kReadArgumentsWithData = 5;
constexpr std::size_t kMostReadData = wire::kLongestFrame - 5;
constexpr std::size_t kMostWriteData = wire::kLongestFrame - 4;
constexpr std::size_t kLongestValue = 2; // bytes

std::string busOf(const CommandArguments& arguments) {
    const unsigned bus = arguments.byte(1, "BUS");
    if (bus == kAttributes)
        refuseForm(std::string("bus 255 has no binary form: its number asks for attributes there; ") +
                   kUseAscii);
    return oneByte(bus);
}

void checkData(const std::string& data, std::size_t most) {
    if (data.empty())
        refuseForm("DATA holds no byte");
    if (data.size() > most)
        refuseForm("DATA has " + std::to_string(data.size()) + " bytes, and a binary request holds " +
                   std::to_string(most) + "; " + kUseAscii);
}

BinaryForm readForm(const CommandArguments& arguments) {
    const std::uint8_t count = arguments.byte(2, "COUNT");
    const std::string head = busOf(arguments) + oneByte(count) + oneByte(arguments.byte(3, "ADDRESS"));
    // With one argument more the unit ignores DATA, too.
    if (arguments.size() != kReadArgumentsWithData)
        return {requestFrame(kReadId, head), hexTextOf(count)};
    const std::string& data = arguments.bytes(4);
    checkData(data, kMostReadData);
    return {requestFrame(kReadId, head + data), hexTextOf(count)};
}

/// The unit takes the address for the first of the bytes, too.
BinaryForm writeForm(const CommandArguments& arguments) {
    const std::string bus = busOf(arguments);
    const std::string address = oneByte(arguments.byte(2, "ADDRESS"));
    const std::string& data = arguments.bytes(3);
    checkData(data, kMostWriteData);
    if (data.substr(0, 1) != address)
        refuseForm(
            "a binary i2c write sends the slave's address as its first byte: DATA has to begin "
            "with " +
            hexDigits(address) +
            "; for other DATA use i2c read BUS COUNT ADDRESS DATA, which writes it and then reads "
            "COUNT bytes, or " +
            kUseAscii);
    return {requestFrame(kWriteId, bus + oneByte(static_cast<unsigned>(data.size())) + data),
            doneText()};
}

BinaryForm getForm(const CommandArguments& arguments) {
    const std::uint8_t attribute = arguments.byte(2, "ID");
    const std::string frame = requestFrame(
        kReadId, oneByte(kAttributes) + oneByte(arguments.byte(1, "BUS")) + oneByte(attribute));
    if (attribute == kStopCondition)
        return {frame, hexTextOf(1)};
    if (attribute == kBusSpeed)
        return {frame, hexTextOf(2)};
    // How long its value is, only a unit knows that has it.
    return {frame, hexText};
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

/// VALUE as the unit reads it: digits in pairs, what is no digit skipped, an unpaired one dropped, and
/// zeros in place of what is missing.
std::string valueOf(const CommandArguments& arguments) {
    std::string digits;
    for (const char c : arguments.text(3))
        if (isHexDigit(c))
            digits += c;
    std::string value;
    for (std::size_t at = 0; at + 1 < digits.size() && value.size() < kLongestValue; at += 2)
        value += oneByte(static_cast<unsigned>(std::stoul(digits.substr(at, 2), nullptr, 16)));
    if (value.empty())
        refuseForm(
            "VALUE has to be hexadecimal digits, two for each byte, such as 01 or 0064, and not '" +
            std::string(arguments.text(3)) + "'");
    value.resize(kLongestValue);
    return value;
}

BinaryForm setForm(const CommandArguments& arguments) {
    const std::uint8_t attribute = arguments.byte(2, "ID");
    const std::string head =
        oneByte(kAttributes) + oneByte(arguments.byte(1, "BUS")) + oneByte(attribute);
    const std::string value = valueOf(arguments);
    return {requestFrame(kWriteId, head + (attribute == kStopCondition ? value.substr(0, 1) : value)),
            doneText()};
}

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

constexpr struct {
    std::string_view word;
    std::size_t fewest; ///< arguments, with the word
    std::size_t most;
    BinaryForm (*form)(const CommandArguments& arguments);
} kOperations[] = {
    {"read", 4, kAnyNumber, readForm},
    {"write", 4, 4, writeForm},
    {"getattributes", 3, 3, getForm},
    {"setattributes", 4, 4, setForm},
};

} // namespace

BinaryForm i2cForm(const CommandArguments& arguments) {
    for (const auto& operation : kOperations)
        if (arguments.size() >= operation.fewest && arguments.size() <= operation.most &&
            arguments.text(0) == operation.word)
            return operation.form(arguments);
    refuseArguments("i2c");
}

} // namespace station
