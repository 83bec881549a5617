#include "client/Hex.h"
#include "client/RequestFrame.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Bytes.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"
#include "wire/Frame.h"

namespace station {

namespace {

// serial open N BAUD FLAGS      09 53 00 N BAUD (four bytes) FLAGS
// serial open 240|241           04 53 00 N
// serial close N                04 53 01 N
// serial send N DATA            LL 53 02 N DATA
// serial get N COUNT            05 53 03 N COUNT
// serial getall N               04 53 04 N

constexpr unsigned char kSerialId = 'S';
enum Operation : unsigned { Open = 0, Close = 1, Send = 2, Get = 3, GetAll = 4 };
constexpr char kChannel[] = "N";
// These two are no lines and have no settings.
constexpr unsigned kWlan = 240;
constexpr unsigned kBluetooth = 241;

constexpr std::size_t kFewestOpenArguments = 2;
constexpr std::size_t kLineOpenArguments = 4;
constexpr std::size_t kCloseArguments = 2;
constexpr std::size_t kSendArguments = 3;
constexpr std::size_t kGetArguments = 3;
constexpr std::size_t kGetAllArguments = 2;

constexpr std::size_t kMostData = wire::kLongestFrame - 4;
constexpr std::size_t kWlanStore = 247; // bytes that are always fetched from there

std::string headOf(Operation operation, unsigned channel) {
    return oneByte(operation) + oneByte(channel);
}

/// What the bytes of an ASCII answer stand behind.
std::string opening(const char* word, unsigned channel) {
    return std::string(word) + " 0x" + hexDigits(oneByte(channel)) + ' ';
}

BinaryForm openForm(const CommandArguments& arguments, unsigned channel) {
    std::string rest = headOf(Open, channel);
    if (channel != kWlan && channel != kBluetooth) {
        if (arguments.size() < kLineOpenArguments)
            refuseForm("serial open needs N BAUD FLAGS for a line, such as serial open 1 115200 0");
        rest += fourBytes(arguments.word(2, "BAUD")) + oneByte(arguments.byte(3, "FLAGS"));
    }
    return {requestFrame(kSerialId, rest), doneText()};
}

BinaryForm sendForm(const std::string& data, unsigned channel) {
    if (data.empty())
        refuseForm("DATA holds no byte");
    if (data.size() > kMostData)
        refuseForm("DATA has " + std::to_string(data.size()) + " bytes, and a binary request holds " +
                   std::to_string(kMostData) + "; send it in parts, or " + kUseAscii);
    return {requestFrame(kSerialId, headOf(Send, channel) + data), doneText()};
}

BinaryForm getForm(unsigned channel, unsigned count) {
    const std::string text = opening("get", channel);
    // A line gives as many as it is asked for, Bluetooth what there is.
    return {requestFrame(kSerialId, headOf(Get, channel) + oneByte(count)),
            channel == kBluetooth ? base64TextUpTo(count, text) : base64TextOf(count, text)};
}

BinaryForm getAllForm(unsigned channel) {
    const std::string text = opening("getall", channel);
    return {
        requestFrame(kSerialId, headOf(GetAll, channel)),
        channel == kWlan ? base64TextOf(kWlanStore, text) : base64TextUpTo(wire::kLongestPayload, text)};
}

} // namespace

BinaryForm serialForm(const CommandArguments& arguments) {
    const auto is = [&](std::string_view word, std::size_t count) {
        return arguments.size() == count && arguments.beginsWith(0, word);
    };
    const auto channel = [&] { return arguments.byte(1, kChannel); };
    if (arguments.size() >= kFewestOpenArguments && arguments.beginsWith(0, "open"))
        return openForm(arguments, channel());
    if (is("close", kCloseArguments))
        return {requestFrame(kSerialId, headOf(Close, channel())), doneText()};
    if (is("send", kSendArguments))
        return sendForm(arguments.bytes(2), channel());
    // A letter less than the word has is enough for the unit, too.
    if (is("getal", kGetAllArguments))
        return getAllForm(channel());
    const bool isAll = arguments.size() != 0 && arguments.beginsWith(0, "getal");
    if (!isAll && is("get", kGetArguments))
        return getForm(channel(), arguments.byte(2, "COUNT"));
    refuseArguments("serial");
}

} // namespace station
