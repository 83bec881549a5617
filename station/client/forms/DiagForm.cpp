#include "client/RequestFrame.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Bytes.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"

namespace station {

namespace {

// diag cksum TYPE OFFSET LENGTH      0C 44 09 TYPE OFFSET (four bytes) LENGTH (four bytes)

constexpr unsigned char kDiagId = 'D';
constexpr unsigned kChecksum = 0x09;
constexpr std::size_t kArguments = 4;
constexpr std::size_t kChecksumBytes = 4;

} // namespace

BinaryForm diagForm(const CommandArguments& arguments) {
    if (arguments.size() != kArguments || !arguments.beginsWith(0, "cksum"))
        refuseForm("diag has one binary form: diag cksum TYPE OFFSET LENGTH");
    return {requestFrame(kDiagId, oneByte(kChecksum) + oneByte(arguments.byte(1, "TYPE")) +
                                      fourBytes(arguments.word(2, "OFFSET")) +
                                      fourBytes(arguments.word(3, "LENGTH"))),
            base64TextOf(kChecksumBytes, "cksum ")};
}

} // namespace station
