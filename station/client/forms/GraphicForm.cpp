#include "client/RequestFrame.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Bytes.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"

namespace station {

namespace {

// graphic display OUTPUT PICTURE      05 47 A0 OUTPUT PICTURE
// graphic capture INPUT OUTPUT        06 47 A1 00 INPUT OUTPUT

constexpr unsigned char kGraphicId = 'G';
constexpr unsigned kDisplay = 0xA0;
constexpr unsigned kCapture = 0xA1;
constexpr unsigned kUnused = 0;
constexpr std::size_t kArguments = 3;

} // namespace

BinaryForm graphicForm(const CommandArguments& arguments) {
    const auto is = [&](std::string_view word) {
        return arguments.size() >= kArguments && arguments.beginsWith(0, word);
    };
    if (is("display"))
        return {requestFrame(kGraphicId, oneByte(kDisplay) + oneByte(arguments.byte(1, "OUTPUT")) +
                                             oneByte(arguments.byte(2, "PICTURE"))),
                doneText()};
    if (is("capture"))
        return {requestFrame(kGraphicId, oneByte(kCapture) + oneByte(kUnused) +
                                             oneByte(arguments.byte(1, "INPUT")) +
                                             oneByte(arguments.byte(2, "OUTPUT"))),
                doneText()};
    refuseForm(
        "graphic has the binary forms graphic display OUTPUT PICTURE and graphic capture INPUT OUTPUT");
}

} // namespace station
