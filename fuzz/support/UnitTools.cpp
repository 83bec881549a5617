#include "support/UnitTools.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Expect.h"
#include "platform/CommandLine.h"
#include "platform/Shell.h"
#include "support/ErrorText.h"

namespace {

constexpr pid_t kPid = 4711;

unsigned presentFaults = 0;
System::Descriptor shellOutput;

bool has(UnitTools::Fault fault) {
    return (presentFaults & fault) != 0;
}

/// The number behind the word, when the text begins with the word.
bool takes(std::string_view text, std::string_view word, int& number) {
    if (text.substr(0, word.size()) != word)
        return false;
    number = std::atoi(std::string(text.substr(word.size())).c_str());
    return true;
}

bool isTool(std::string_view text) {
    constexpr std::string_view kFolder = "/vrk/bin/apps/";
    return text.substr(0, kFolder.size()) == kFolder;
}

System::ShellResult resultOf(std::string_view text) {
    using System::ShellOutcome;
    int number = 0;
    if (takes(text, "exit ", number))
        return {ShellOutcome::Ended, (number & 0xFF) << 8, 0};
    if (takes(text, "signal ", number))
        return {ShellOutcome::Ended, number & 0x7F, 0};
    if (takes(text, "sleep", number) || (isTool(text) && has(UnitTools::ToolsFail)))
        return {ShellOutcome::Killed, 0, 0};
    if (takes(text, "stay", number))
        return {ShellOutcome::KillFailed, 0, EPERM};
    if (takes(text, "shut", number))
        return {ShellOutcome::FeedFailed, 0, EIO};
    if (takes(text, "lost", number))
        return {ShellOutcome::WaitFailed, 0, ECHILD};
    return {ShellOutcome::Ended, 0, 0};
}

} // namespace

void UnitTools::renew(unsigned faults) {
    presentFaults = faults;
}

namespace System {

int Shell::start(int, int output, int) {
    if (has(UnitTools::NoProcesses))
        return EAGAIN;
    shellOutput.reset(::dup(output));
    m_pid = kPid;
    return 0;
}

ShellResult Shell::feedAndWait(Descriptor, std::string_view text, std::chrono::nanoseconds limit) const {
    expect(limit.count() > 0, "A shell has time");
    // Displays' tools say nothing; their arguments are told apart.
    if (isTool(text))
        ErrorText::add(std::string(text) + "\n");
    else if (::write(shellOutput.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        fail("the shell's output cannot be written");
    shellOutput.reset();
    return resultOf(text);
}

int runCommandLine(const char* commandLine) {
    constexpr int kOneSignalled = 1 << 8;
    ErrorText::add(std::string(commandLine) + "\n");
    if (has(UnitTools::NoProcesses))
        return -1;
    return has(UnitTools::ToolsFail) ? 0 : kOneSignalled;
}

} // namespace System
