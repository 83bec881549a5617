#include "commands/InsideCommand.h"

#include <cerrno>
#include <cstring>
#include <iostream>

#include "commands/AudioStart.h"
#include "commands/DaemonStart.h"
#include "commands/UnitSetup.h"
#include "unit/ChildProcess.h"
#include "unit/Sandbox.h"
#include "unit/StopSignals.h"

namespace headunit {

int insideCommand(const InsideOptions& options) {
    enteredSandbox(options.standardError);
    const auto environment =
        options.supplier.empty() ? Environment() : daemonEnvironment(options.supplier.substr(1));
    if (!options.audioDriver.empty())
        startAudioDriver(options.audioDriver);
    if (options.daemonPath.empty()) {
        const int error = executeInPlace(options.command, environment);
        std::cerr << "headunit: " << options.command.front() << ": " << std::strerror(error) << '\n';
        return error == ENOENT ? kNotFound : kCannotExecute;
    }
    StopSignals signals;
    ChildProcess daemon({options.daemonPath}, -1, environment);
    if (const int signal = waitUntilListening(signals, [&] { return daemon.ended(); }); signal != 0)
        return kSignalStatusBase + signal;
    return ChildProcess(options.command).wait();
}

} // namespace headunit
