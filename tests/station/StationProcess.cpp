#include "StationProcess.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "support/Program.h"

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
    const int status = program.wait();
    EXPECT_GE(status, 0) << "the program does not end";
    return {program.killer() != 0 ? -program.killer() : status, program.output(), program.error()};
}

Outcome runStationAt(const std::string& target, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--target", target});
    return runStation({std::move(arguments)});
}

} // namespace station
