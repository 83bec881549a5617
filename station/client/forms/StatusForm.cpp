#include "client/RequestFrame.h"
#include "client/StatusPayload.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"

namespace station {

// status            02 73         the status
// status 01|02      03 73 01|02   the beginning of a file

BinaryForm statusForm(const std::vector<std::string>& arguments) {
    if (arguments.empty())
        return {requestFrame(kStatusId, {}), statusText};
    if (arguments.size() == 1 && arguments[0] == "01")
        return {requestFrame(kStatusId, "\x01"), printedText()};
    if (arguments.size() == 1 && arguments[0] == "02")
        return {requestFrame(kStatusId, "\x02"), printedText()};
    if (arguments.size() > 1)
        refuseForm("status takes at most one argument in the binary form: 01 or 02");
    refuseForm("status " + arguments[0] +
               " has no binary form (status, status 01 and status 02 have one); " + kUseAscii);
}

} // namespace station
