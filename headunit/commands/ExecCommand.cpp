#include "commands/ExecCommand.h"

#include <filesystem>

#include "commands/AudioStart.h"
#include "commands/UnitPeers.h"
#include "commands/UnitSetup.h"
#include "devices/DeviceList.h"
#include "unit/HostSystem.h"
#include "unit/Sandbox.h"
#include "unit/StopSignals.h"

namespace headunit {
namespace {

SandboxLayout layoutFor(const ExecOptions& options, const UnitFolder& folder) {
    SandboxLayout layout = layoutOnThisHost();
    layout.unitFolder = folder.path();
    const std::string& program = options.command.front();
    if (std::filesystem::path(program).is_absolute())
        shareFolderOf(program, layout);
    if (options.withDaemon)
        shareFolderOf(options.daemonPath, layout);
    return layout;
}

std::vector<std::string> launcherFor(const ExecOptions& options) {
    std::vector<std::string> launcher = {ownProgram(), "inside"};
    if (options.withDaemon)
        launcher.insert(launcher.end(),
                        {"--audio", audioDriverProgram(), "--daemon", options.daemonPath});
    passOn(options.supplier, launcher);
    return launcher;
}

} // namespace

int execCommand(const ExecOptions& options) {
    if (options.withDaemon)
        requireDaemon(options.daemonPath);
    StopSignals signals;
    UnitFolder folder = openUnitFolder(options.unitFolder);
    const DeviceList devices = allDevices(options.variant);
    install(devices, folder);
    const UnitPeers peers(folder, options.wantedMedia);

    const Descendants descendants;
    Sandbox sandbox(layoutFor(options, folder), launcherFor(options), options.command);
    for (;;) {
        if (const auto status = sandbox.ended())
            return *status;
        const int signal = signals.wait();
        if (signal != SIGCHLD)
            return kSignalStatusBase + signal;
    }
}

} // namespace headunit
