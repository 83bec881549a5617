#include "client/RequestFrame.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Bytes.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"

namespace station {

namespace {

// audio activate        04 45 80 01
// audio deactivate      04 45 80 00

constexpr unsigned char kAudioId = 'E';
constexpr unsigned kSwitch = 0x80;
constexpr unsigned kActive = 1;
constexpr unsigned kInactive = 0;
constexpr std::size_t kArguments = 1;

BinaryForm switchTo(unsigned state) {
    return {requestFrame(kAudioId, oneByte(kSwitch) + oneByte(state)), doneText()};
}

} // namespace

BinaryForm audioForm(const CommandArguments& arguments) {
    if (arguments.size() == kArguments && arguments.beginsWith(0, "activate"))
        return switchTo(kActive);
    if (arguments.size() == kArguments && arguments.beginsWith(0, "deactivate"))
        return switchTo(kInactive);
    refuseForm("audio has two binary forms: audio activate and audio deactivate");
}

} // namespace station
