#include "commands/ECmd.h"

#include <cstdint>

#include "commands/SharedTexts.h"
#include "core/TokenText.h"
#include "platform/CommandLine.h"
#include "runtime/OnlyObject.h"

namespace {

constexpr int kRequestLength = 4;
constexpr int kSwitch = 0x80;
constexpr std::size_t kTokens = 2;
constexpr char kActivateWord[] = "activate";
constexpr char kDeactivateWord[] = "deactivate";
constexpr unsigned char kActive = 1;
constexpr unsigned char kInactive = 0;

enum Code : std::uint32_t {
    kAudioError = 0x50010000,
    kInvalidState = 0x50000001,
};

constexpr char kActivate[] = "slay -s SIGUSR1 deva-nvaudio";
constexpr char kDeactivate[] = "slay -s SIGUSR2 deva-nvaudio";

constexpr char kUnknownSubCommand[] = "Unknown 'E' subcommand: %x";
constexpr char kNoSuchState[] = "invalid state requested";
constexpr char kCallFailed[] = "system call error: %s returned with rc: %d";
// Names the activating signal for both states.
constexpr char kNotRunning[] =
    "Nvidia audio driver is not running: slay -s SIGUSR1 deva-nvaudio returned with rc: %d ";

} // namespace

System::Mutex ECmd::s_singleton_mutex(System::Mutex::Normal);

ECmd* ECmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new ECmd; });
}

ECmd::ECmd() : AbstractCmd('E', "audio", true) {}

Answer ECmd::run(const std::vector<unsigned char>* request) {
    if (tavrin_getRequestLen(request) != kRequestLength)
        return failure(kAudioError, SharedTexts::kInvalidLength);
    const int subCommand = tavrin_getCommand(request);
    if (subCommand != kSwitch)
        return failure(kAudioError, kUnknownSubCommand, static_cast<unsigned>(subCommand));
    return switchTo((*request)[3]);
}

Answer ECmd::run(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kTokens)
        return failure(kAudioError, SharedTexts::kInvalidLength);
    if (beginsWith(tokens[1], kActivateWord))
        return switchTo(kActive);
    if (beginsWith(tokens[1], kDeactivateWord))
        return switchTo(kInactive);
    return genericError(SharedTexts::kUnknownSubCommand, tokenText(tokens[1]).c_str());
}

ProcessResponse* ECmd::setState(unsigned char state) {
    return switchTo(state).release();
}

Answer ECmd::switchTo(unsigned char state) {
    if (state != kActive && state != kInactive)
        return failure(kInvalidState, kNoSuchState);
    const char* command = state == kActive ? kActivate : kDeactivate;
    // The tool answers how many processes it has signalled.
    const int result = System::runCommandLine(command);
    if (result == -1)
        return failure(kAudioError, kCallFailed, command, result);
    if (result == 0)
        return failure(kAudioError, kNotRunning, result);
    return success();
}
