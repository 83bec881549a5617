#include "client/RequestFrame.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Bytes.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"

namespace station {

namespace {

// port read N               05 70 E3 01 N
// port getattributes        04 70 E3 00
// port write N 0|1          06 50 E3 01 N 00|04

constexpr unsigned char kReadId = 'p';
constexpr unsigned char kWriteId = 'P';
constexpr unsigned kPortCommand = 0xE3;
constexpr unsigned kAll = 0;
constexpr unsigned kOne = 1;
constexpr unsigned kHighLevel = 0x04;
constexpr unsigned kLowLevel = 0x00;
constexpr char kPortNumber[] = "N";

constexpr std::size_t kReadArguments = 2;
constexpr std::size_t kWriteArguments = 3;

constexpr std::size_t kOnePortBytes = 2; // its number and its attributes
constexpr std::size_t kCountBytes = 2;   // the number of ports, ahead of two ports a byte
constexpr unsigned kBitsPerByte = 8;

std::string allPortsText(std::string_view payload) {
    if (payload.size() < kCountBytes)
        checkLength(payload, kCountBytes);
    const std::size_t ports = static_cast<std::size_t>(static_cast<unsigned char>(payload[0]))
                                  << kBitsPerByte |
                              static_cast<unsigned char>(payload[1]);
    checkLength(payload, kCountBytes + (ports + 1) / 2);
    return hexText(payload);
}

unsigned levelOf(const CommandArguments& arguments) {
    // The unit looks at the first character only.
    if (arguments.beginsWith(2, "1"))
        return kHighLevel;
    if (arguments.beginsWith(2, "0"))
        return kLowLevel;
    refuseForm("port write takes the level 0 or 1, and not '" + std::string(arguments.text(2)) + "'");
}

} // namespace

BinaryForm portForm(const CommandArguments& arguments) {
    const auto isWord = [&](std::string_view word) {
        return arguments.size() != 0 && arguments.beginsWith(0, word);
    };
    if (isWord("read") && arguments.size() == kReadArguments)
        return {requestFrame(kReadId, oneByte(kPortCommand) + oneByte(kOne) +
                                          oneByte(arguments.byte(1, kPortNumber))),
                hexTextOf(kOnePortBytes)};
    if (isWord("getattributes"))
        return {requestFrame(kReadId, oneByte(kPortCommand) + oneByte(kAll)), allPortsText};
    if (isWord("write") && arguments.size() == kWriteArguments)
        return {requestFrame(kWriteId, oneByte(kPortCommand) + oneByte(kOne) +
                                           oneByte(arguments.byte(1, kPortNumber)) +
                                           oneByte(levelOf(arguments))),
                doneText()};
    refuseForm("port has the binary forms port read N, port getattributes and port write N LEVEL");
}

} // namespace station
