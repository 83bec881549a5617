#include "client/RequestFrame.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"
#include "wire/Frame.h"

namespace station {

// ack      02 06, never answered

BinaryForm ackForm(const std::vector<std::string>& arguments) {
    if (!arguments.empty())
        refuseForm("ack takes no arguments in the binary form");
    return {requestFrame(wire::kAckId, {}), printedText()};
}

} // namespace station
