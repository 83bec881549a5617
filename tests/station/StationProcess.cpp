#include "StationProcess.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string_view>
#include <utility>

#include "client/Deadline.h"
#include "support/Pipe.h"
#include "wire/Descriptor.h"

namespace station {

namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentWith(const std::vector<std::string>& additions) {
    constexpr std::string_view kOwnPrefix = "STATION_";
    std::vector<std::string> environment = additions;
    for (char** entry = environ; *entry != nullptr; ++entry)
        if (std::string_view(*entry).substr(0, kOwnPrefix.size()) != kOwnPrefix)
            environment.emplace_back(*entry);
    return environment;
}

pid_t spawn(const Invocation& invocation, int standardOutput, int standardError) {
    std::vector<std::string> arguments = {STATION_PROGRAM};
    arguments.insert(arguments.end(), invocation.arguments.begin(), invocation.arguments.end());
    std::vector<std::string> environment = environmentWith(invocation.environment);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    if (invocation.standardInput >= 0)
        ::posix_spawn_file_actions_adddup2(&actions, invocation.standardInput, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, standardOutput, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, standardError, STDERR_FILENO);
    // As from a person's shell, whatever runs the tests ignores.
    sigset_t usual;
    ::sigemptyset(&usual);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
        ::sigaddset(&usual, signal);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setsigdefault(&attributes, &usual);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t child = -1;
    EXPECT_EQ(::posix_spawn(&child, STATION_PROGRAM, &actions, &attributes, pointersTo(arguments).data(),
                            pointersTo(environment).data()),
              0);
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    return child;
}

/// Appends what can be read; false at the end of the pipe.
bool drain(System::Descriptor& pipe, std::string& text) {
    std::array<char, 65536> buffer;
    const ssize_t received = ::read(pipe.get(), buffer.data(), buffer.size());
    if (received <= 0)
        return false;
    text.append(buffer.data(), static_cast<std::size_t>(received));
    return true;
}

/// False when the deadline passed first.
bool collect(System::Descriptor& output, System::Descriptor& errors, Outcome& outcome) {
    const Deadline deadline = Deadline::after(Seconds(60));
    while (output || errors) {
        // poll() skips the entry of a pipe that has ended, whose descriptor is -1.
        std::array<pollfd, 2> entries = {pollfd{output.get(), POLLIN, 0},
                                         pollfd{errors.get(), POLLIN, 0}};
        if (::poll(entries.data(), entries.size(), deadline.pollMilliseconds()) == 0)
            return false;
        if (entries[0].revents != 0 && !drain(output, outcome.output))
            output.reset();
        if (entries[1].revents != 0 && !drain(errors, outcome.errors))
            errors.reset();
    }
    return true;
}

} // namespace

Outcome runStation(const Invocation& invocation) {
    Pipe output;
    Pipe errors;
    const bool isCollected = invocation.standardOutput < 0;
    const pid_t child =
        spawn(invocation, isCollected ? output.writeEnd.get() : invocation.standardOutput,
              errors.writeEnd.get());
    output.writeEnd.reset();
    errors.writeEnd.reset();
    invocation.onStart(child);

    Outcome outcome;
    if (!collect(output.readEnd, errors.readEnd, outcome)) {
        ADD_FAILURE() << "the program does not end";
        ::kill(child, SIGKILL);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return outcome;
}

Outcome runStationAt(const std::string& target, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--target", target});
    return runStation({std::move(arguments)});
}

} // namespace station
