#include "StationProcess.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

namespace station {

namespace {

/// As from a person's shell, whatever runs the tests ignores.
bool heedSignals() {
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
        if (::signal(number, SIG_DFL) == SIG_ERR)
            return false;
    return true;
}

} // namespace

Outcome runStation(const Invocation& invocation) {
    std::vector<std::string> command = {STATION_PROGRAM};
    command.insert(command.end(), invocation.arguments.begin(), invocation.arguments.end());
    Program::Surroundings surroundings;
    surroundings.environment = invocation.environment;
    surroundings.hidden = "STATION_";
    surroundings.input = invocation.standardInput;
    surroundings.output = invocation.standardOutput;
    surroundings.prepare = heedSignals;
    Program program(command, surroundings);
    invocation.onStart(program.pid());
    Outcome outcome = program.outcome();
    EXPECT_GE(outcome.exitCode, 0) << "the program does not end";
    if (program.killer() != 0)
        outcome.exitCode = -program.killer();
    return outcome;
}

Outcome runStationAt(const std::string& target, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--target", target});
    return runStation({std::move(arguments)});
}

} // namespace station
