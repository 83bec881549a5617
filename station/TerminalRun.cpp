#include "TerminalRun.h"

#include <unistd.h>

#include <csignal>
#include <exception>
#include <iostream>
#include <string>

#include "EndCode.h"
#include "Exchange.h"
#include "ExitCode.h"
#include "client/Failure.h"
#include "session/Interruption.h"
#include "terminal/Channel.h"
#include "terminal/Pump.h"
#include "terminal/StandardConsole.h"
#include "terminal/TerminalOrder.h"

namespace station {
namespace {

void connectLine(const CommandLine& line, const TerminalOrder& order) {
    Interruption interruption;
    StandardConsole console(STDIN_FILENO, STDOUT_FILENO, interruption);
    const auto onInfo = [&](const std::string& message) { console.tell("Info \"" + message + "\""); };
    const auto session = openSession(line, interruption, onInfo);
    // Until here there is nothing to be put in order, and a signal ends the program as ever.
    const SignalWatch signals(interruption, {SIGHUP, SIGINT, SIGQUIT, SIGTERM});
    Channel channel(*session, order, onInfo);
    Pump(channel, console, interruption).run();
}

} // namespace

int runTerminal(const CommandLine& line) {
    try {
        const auto order = parseTerminalOrder(line.arguments, std::cout);
        if (!order)
            return static_cast<int>(ExitCode::Success);
        if (line.json)
            throw Failure(Failure::Kind::InvalidRequest,
                          "serial terminal prints what comes from the line, and no JSON");
        connectLine(line, *order);
        return static_cast<int>(ExitCode::Success);
    } catch (const std::exception& error) {
        std::cerr << "station: " << error.what() << '\n';
        return endCode(error);
    }
}

} // namespace station
