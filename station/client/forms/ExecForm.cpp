#include <algorithm>
#include <limits>

#include "client/Hex.h"
#include "client/Quoting.h"
#include "client/RequestFrame.h"
#include "client/forms/AnswerTexts.h"
#include "client/forms/Bytes.h"
#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"
#include "wire/Frame.h"

namespace station {

namespace {

// exec command SECONDS TEXT      LL 63 01 SECONDS (two bytes) TEXT

constexpr unsigned char kExecId = 'c';
constexpr unsigned char kExecute = 0x01;
constexpr std::string_view kCommandWord = "command";
constexpr std::size_t kArguments = 3;

// Length, id, sub-command and two bytes of time limit.
constexpr std::size_t kHeader = 5;
constexpr std::size_t kLongestText = wire::kLongestFrame - kHeader;

bool isPrintable(char c) {
    return c >= 0x20 && c <= 0x7E;
}

std::string secondsOf(const std::string& argument) {
    const auto seconds = parseNumber(argument);
    if (!seconds || *seconds > std::numeric_limits<std::uint16_t>::max())
        refuseForm("a binary request holds a time limit of 0 to 65535 seconds, and not '" + argument +
                   "'; " + kUseAscii);
    return twoBytes(static_cast<std::uint16_t>(*seconds));
}

void checkText(std::string_view text) {
    if (text.empty())
        refuseForm("exec needs a text to run");
    if (text.size() > kLongestText)
        refuseForm("the text has " + std::to_string(text.size()) +
                   " bytes, and a binary request holds " + std::to_string(kLongestText) + "; " +
                   kUseAscii);
    const auto* const wrong = std::find_if_not(text.begin(), text.end(), isPrintable);
    if (wrong != text.end())
        refuseForm("the text holds the byte " +
                   hexDigits(text.substr(static_cast<std::size_t>(wrong - text.begin()), 1)) +
                   ", and a binary request only characters from 20 to 7E; " + kUseAscii);
}

} // namespace

BinaryForm execForm(const std::vector<std::string>& arguments) {
    // The unit compares the first characters only.
    if (arguments.size() != kArguments ||
        arguments[0].compare(0, kCommandWord.size(), kCommandWord) != 0)
        refuseArguments("exec");
    const std::string seconds = secondsOf(arguments[1]);
    const std::string text = argumentBytes(arguments[2]);
    checkText(text);
    return {requestFrame(kExecId, oneByte(kExecute) + seconds + text), printedText()};
}

} // namespace station
