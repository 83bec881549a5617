#include "commands/RunCommand.h"

#include <unistd.h>

#include <filesystem>
#include <functional>
#include <iomanip>
#include <iostream>

#include "commands/AudioStart.h"
#include "commands/DaemonStart.h"
#include "commands/UnitPeers.h"
#include "commands/UnitSetup.h"
#include "devices/DeviceList.h"
#include "unit/ChildProcess.h"
#include "unit/HostSystem.h"
#include "unit/InPlaceTree.h"
#include "unit/ListeningPort.h"
#include "unit/Sandbox.h"
#include "unit/StopSignals.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr int kDaemonGone = 1;
constexpr int kLabelWidth = 8;

void requireConsent(const RunOptions& options) {
    if (!options.unitFolder.empty())
        throw UnitError("--in-place has no unit folder: give either --in-place or --unit");
    if (!options.changeThisMachine)
        throw UnitError(
            "--in-place makes device nodes and files in /dev, /mnt/app, /ifs and /vrk of this machine "
            "itself; it is for disposable containers. Add --yes-change-this-machine when this is one");
    if (::geteuid() != 0)
        throw UnitError("--in-place needs root to make nodes in /dev");
}

void requireFreePort() {
    if (isListening(kDaemonPort))
        throw UnitError("port " + std::to_string(kDaemonPort) +
                        " of 127.0.0.1 is taken: another unit or daemon runs on this machine");
}

/// What the user is told of a unit that stands.
struct Reach {
    std::string unit;    ///< where its files are
    std::string serial;  ///< the station's end of the line
    std::string control; ///< the options that name the unit to 'control'
};

void printLine(const char* label, const std::string& value) {
    std::cout << std::left << std::setw(kLabelWidth) << label << value << '\n';
}

void printWhereToReach(const Reach& reach) {
    const auto programs = std::filesystem::path(ownProgram()).parent_path();
    std::cout << '\n'; // the daemon's banner has no line end
    printLine("unit", reach.unit);
    printLine("tcp", "tcp:127.0.0.1:" + std::to_string(kDaemonPort));
    printLine("serial", "serial:" + reach.serial);
    printLine("try", (programs / "station").string() + " status");
    printLine("control", (programs / "headunit").string() + " control" + reach.control + " state");
    printLine("stop", "Ctrl-C");
    std::cout.flush();
}

/// From the daemon's start to its end or the stop signal.
int attend(StopSignals& signals, const Reach& reach,
           const std::function<std::optional<int>()>& daemonEnded) {
    if (waitUntilListening(signals, daemonEnded) != 0)
        return 0;
    printWhereToReach(reach);
    for (;;) {
        if (const auto status = daemonEnded()) {
            std::cerr << "headunit: the daemon ended with status " << *status << '\n';
            return kDaemonGone;
        }
        if (signals.wait() != SIGCHLD)
            return 0;
    }
}

int runInSandbox(const RunOptions& options, StopSignals& signals) {
    UnitFolder folder = openUnitFolder(options.unitFolder);
    const DeviceList devices = allDevices(options.variant);
    install(devices, folder);
    const UnitPeers peers(folder, options.wantedMedia);

    SandboxLayout layout = layoutOnThisHost();
    layout.unitFolder = folder.path();
    layout.ownNetwork = false;
    layout.sharedFolders.clear();
    layout.workingDirectory = "/";
    shareFolderOf(options.daemonPath, layout);

    std::vector<std::string> launcher = {ownProgram(), "inside", "--audio", audioDriverProgram()};
    passOn(options.supplier, launcher);
    const Descendants descendants;
    Sandbox sandbox(layout, launcher, {options.daemonPath});
    const Reach reach{folder.path(), peers.stationPath(), " --unit " + folder.path()};
    return attend(signals, reach, [&] { return sandbox.ended(); });
}

/// The tools beside headunit come first, as they do in a unit of its own.
std::string searchPathOfUnit() {
    const SandboxLayout layout = layoutOnThisHost();
    return inFront(layout.programFolder, layout.searchPath);
}

/// The unit's libraries come first, likewise.
std::string libraryPathOfUnit() {
    return inFront(kUnitLibraries, layoutOnThisHost().libraryPath);
}

int runInPlace(const RunOptions& options, StopSignals& signals) {
    InPlaceTree tree;
    const DeviceList devices = allDevices(options.variant);
    install(devices, tree);
    const UnitPeers peers(tree, options.wantedMedia);

    const Descendants descendants;
    startAudioDriver(audioDriverProgram());
    Environment environment = daemonEnvironment(options.supplier);
    environment["PATH"] = searchPathOfUnit();
    environment["LD_LIBRARY_PATH"] = libraryPathOfUnit();
    ChildProcess daemon({options.daemonPath}, -1, environment);
    const Reach reach{"this machine", peers.stationPath(), ""};
    return attend(signals, reach, [&] { return daemon.ended(); });
}

} // namespace

int runCommand(const RunOptions& options) {
    if (options.inPlace)
        requireConsent(options);
    requireDaemon(options.daemonPath);
    requireFreePort();
    StopSignals signals;
    return options.inPlace ? runInPlace(options, signals) : runInSandbox(options, signals);
}

} // namespace headunit
