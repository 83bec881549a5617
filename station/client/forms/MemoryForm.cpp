#include <algorithm>

#include "client/Failure.h"
#include "client/Hex.h"
#include "client/RequestFrame.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Bytes.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"
#include "wire/Frame.h"

namespace station {

namespace {

// memory read 8bit|16bit|32bit COUNT ADDRESS             08 74 00|02|04 COUNT ADDRESS (four bytes)
// memory read 8bitcrc COUNT ADDRESS                      0A 74 06 COUNT ADDRESS 00 00
// memory write 8bit|16bit|32bit COUNT ADDRESS DATA       LL 74 01|03|05 COUNT ADDRESS DATA
// memory write 8bitcrc COUNT ADDRESS DATA CHECKSUM       LL 74 07 COUNT ADDRESS 00 00 CHECKSUM DATA

constexpr unsigned char kMemoryId = 't';
constexpr std::string_view kRead = "read";
constexpr std::string_view kWrite = "write";
constexpr std::size_t kReadArguments = 4;
constexpr std::size_t kWriteArguments = 5;
constexpr std::size_t kCheckedWriteArguments = 6;

// In a read with a checksum it comes back; one request at a time needs none. A write ignores it.
constexpr std::string_view kTag("\0\0", 2);
constexpr std::size_t kChecksumBytes = 1;
constexpr std::size_t kWriteHeader = 8;
constexpr std::size_t kCheckedWriteHeader = 11;
// A unit refuses more in the ASCII form.
constexpr std::size_t kMostData = 255;

constexpr char kWidths[] = "; WIDTH is 8bit, 16bit, 32bit or 8bitcrc";

struct Access {
    std::string_view operation;
    std::string_view keyword;
    std::size_t width; ///< bytes
    unsigned code;
    bool withChecksum;

    std::size_t fewestArguments() const {
        if (operation == kRead)
            return kReadArguments;
        return withChecksum ? kCheckedWriteArguments : kWriteArguments;
    }
};

constexpr Access kAccesses[] = {{kRead, "8bit", 1, 0, false},   {kWrite, "8bit", 1, 1, false},
                                {kRead, "16bit", 2, 2, false},  {kWrite, "16bit", 2, 3, false},
                                {kRead, "32bit", 4, 4, false},  {kWrite, "32bit", 4, 5, false},
                                {kRead, "8bitcrc", 1, 6, true}, {kWrite, "8bitcrc", 1, 7, true}};

const Access& accessOf(const CommandArguments& arguments) {
    if (arguments.size() < kReadArguments)
        refuseArguments("memory", kWidths);
    for (const Access& access : kAccesses)
        if (access.operation == arguments.text(0) && access.keyword == arguments.text(1) &&
            access.fewestArguments() <= arguments.size())
            return access;
    refuseArguments("memory", kWidths);
}

/// In ASCII the tag is left out, and the checksum is the first byte.
AnswerText checkedBytesText(std::size_t total) {
    return [total](std::string_view payload) {
        checkLength(payload, kTag.size() + kChecksumBytes + total);
        if (payload.substr(0, kTag.size()) != kTag)
            throw Failure(
                Failure::Kind::MalformedAnswer,
                "malformed answer: expected the tag " + hexArgument(kTag) + ": " + hexArgument(payload));
        return hexText(payload.substr(kTag.size()));
    };
}

/// The bytes of DATA that the count asks for. Fewer are sent as they are, and of more than a frame holds
/// its fill: a unit refuses both.
std::string dataOf(const std::string& data, std::size_t total, std::size_t header) {
    if (data.size() > kMostData)
        refuseForm("DATA has " + std::to_string(data.size()) + " bytes, and the unit takes at most " +
                   std::to_string(kMostData) + "; write it in parts");
    return data.substr(0, std::min(total, wire::kLongestFrame - header));
}

BinaryForm readForm(const Access& access, const std::string& head, std::size_t total) {
    if (!access.withChecksum)
        return {requestFrame(kMemoryId, head), hexTextOf(total)};
    return {requestFrame(kMemoryId, head + std::string(kTag)), checkedBytesText(total)};
}

BinaryForm writeForm(const Access& access, const std::string& head, std::size_t total,
                     const CommandArguments& arguments) {
    if (!access.withChecksum)
        return {requestFrame(kMemoryId, head + dataOf(arguments.bytes(4), total, kWriteHeader)),
                doneText()};
    return {requestFrame(kMemoryId, head + std::string(kTag) + oneByte(arguments.byte(5, "CHECKSUM")) +
                                        dataOf(arguments.bytes(4), total, kCheckedWriteHeader)),
            doneText(kTag.size() + kChecksumBytes)};
}

} // namespace

BinaryForm memoryForm(const CommandArguments& arguments) {
    const Access& access = accessOf(arguments);
    const std::uint8_t count = arguments.byte(2, "COUNT");
    const std::string head =
        oneByte(access.code) + oneByte(count) + fourBytes(arguments.word(3, "ADDRESS"));
    const std::size_t total = access.width * count;
    return access.operation == kRead ? readForm(access, head, total)
                                     : writeForm(access, head, total, arguments);
}

} // namespace station
