#include "commands/ECmd.h"

#include <cstdint>

#include "core/TokenText.h"
#include "platform/CommandLine.h"

namespace {

constexpr int kRequestLength = 4;
constexpr int kSwitch = 0x80;
constexpr std::size_t kTokens = 2;
constexpr char kActivateWord[] = "activate";
constexpr char kDeactivateWord[] = "deactivate";
constexpr unsigned char kActive = 1;
constexpr unsigned char kInactive = 0;

constexpr std::uint32_t kAudioError = 0x50010000;
constexpr std::uint32_t kInvalidState = 0x50000001;

constexpr char kActivate[] = "slay -s SIGUSR1 deva-nvaudio";
constexpr char kDeactivate[] = "slay -s SIGUSR2 deva-nvaudio";

constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kUnknownSubCommand[] = "Unknown 'E' subcommand: %x";
constexpr char kUnknownWord[] = "unknown subcommand '%s'";
constexpr char kNoSuchState[] = "invalid state requested";
constexpr char kCallFailed[] = "system call error: %s returned with rc: %d";
// Names the activating signal for both states.
constexpr char kNotRunning[] =
    "Nvidia audio driver is not running: slay -s SIGUSR1 deva-nvaudio returned with rc: %d ";

} // namespace

System::Mutex ECmd::s_singleton_mutex(System::Mutex::Normal);

ECmd* ECmd::getInstance() {
    const System::Lock lock(s_singleton_mutex);
    static ECmd* const instance = new ECmd;
    return instance;
}

ECmd::ECmd() : AbstractCmd('E', "audio", true) {}

ProcessResponse* ECmd::process(std::vector<unsigned char>* request) {
    if (tavrin_getRequestLen(request) != kRequestLength)
        return new ProcessResponse(kAudioError, kInvalidLength);
    const int subCommand = tavrin_getCommand(request);
    if (subCommand != kSwitch)
        return new ProcessResponse(kAudioError, kUnknownSubCommand, static_cast<unsigned>(subCommand));
    return setState((*request)[3]);
}

ProcessResponse* ECmd::process(std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kTokens)
        return new ProcessResponse(kAudioError, kInvalidLength);
    if (beginsWith(tokens[1], kActivateWord))
        return setState(kActive);
    if (beginsWith(tokens[1], kDeactivateWord))
        return setState(kInactive);
    return new ProcessResponse(ProcessResponse::kGenericError, kUnknownWord,
                               tokenText(tokens[1]).c_str());
}

ProcessResponse* ECmd::setState(unsigned char state) {
    if (state != kActive && state != kInactive)
        return new ProcessResponse(kInvalidState, kNoSuchState);
    const char* command = state == kActive ? kActivate : kDeactivate;
    // The tool answers how many processes it has signalled.
    const int result = System::runCommandLine(command);
    if (result == -1)
        return new ProcessResponse(kAudioError, kCallFailed, command, result);
    if (result == 0)
        return new ProcessResponse(kAudioError, kNotRunning, result);
    return new ProcessResponse(ProcessResponse::kSuccess);
}
