#include "client/RequestFrame.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Bytes.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"

namespace station {

namespace {

// blockdev open|close TYPE ID                           05 6D TYPE ID 01|02
// blockdev read|write TYPE ID BLOCK COUNT OFFSET        11 6D TYPE ID 03|04, then four bytes each

constexpr unsigned char kBlockdevId = 'm';
constexpr std::size_t kSwitchArguments = 3;
constexpr std::size_t kTransferArguments = 6;
constexpr std::size_t kCountBytes = 4; // how many bytes were moved

struct Operation {
    std::string_view word;
    unsigned code;
    bool isTransfer;
};

constexpr Operation kOperations[] = {
    {"open", 1, false}, {"close", 2, false}, {"read", 3, true}, {"write", 4, true}};

const Operation& operationOf(const CommandArguments& arguments) {
    for (const Operation& operation : kOperations)
        if (arguments.size() == (operation.isTransfer ? kTransferArguments : kSwitchArguments) &&
            arguments.beginsWith(0, operation.word))
            return operation;
    refuseForm(
        "blockdev has the binary forms blockdev open TYPE ID, blockdev close TYPE ID, "
        "blockdev read TYPE ID BLOCK COUNT OFFSET and blockdev write TYPE ID BLOCK COUNT OFFSET");
}

} // namespace

BinaryForm blockdevForm(const CommandArguments& arguments) {
    const Operation& operation = operationOf(arguments);
    const std::string head =
        oneByte(arguments.byte(1, "TYPE")) + oneByte(arguments.byte(2, "ID")) + oneByte(operation.code);
    if (!operation.isTransfer)
        return {requestFrame(kBlockdevId, head), doneText()};
    return {requestFrame(kBlockdevId, head + fourBytes(arguments.word(3, "BLOCK")) +
                                          fourBytes(arguments.word(4, "COUNT")) +
                                          fourBytes(arguments.word(5, "OFFSET"))),
            base64TextOf(kCountBytes)};
}

} // namespace station
