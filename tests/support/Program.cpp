#include "support/Program.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include "support/Pipe.h"
#include "support/Waiting.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kCannotStart = 127;
constexpr int kSignalBase = 128;

int remaining(Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

/// Takes what is there; closes the pipe at its end.
void drain(System::Descriptor& pipe, std::string& text) {
    std::array<char, 65536> block;
    const ssize_t count = ::read(pipe.get(), block.data(), block.size());
    if (count > 0)
        text.append(block.data(), static_cast<std::size_t>(count));
    if (count == 0)
        pipe.reset();
}

std::vector<std::string> environmentIn(const Program::Surroundings& surroundings) {
    std::vector<std::string> entries;
    for (const auto& [name, value] : surroundings.environment)
        entries.push_back(name + "=" + value);
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string name(*entry, std::strcspn(*entry, "="));
        const bool isHidden = !surroundings.hidden.empty() && name.rfind(surroundings.hidden, 0) == 0;
        if (!isHidden && surroundings.environment.count(name) == 0)
            entries.emplace_back(*entry);
    }
    return entries;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

bool streamTo(int given, const System::Descriptor& pipe, int stream) {
    return ::dup2(given >= 0 ? given : pipe.get(), stream) == stream;
}

} // namespace

void PrintTo(const Outcome& outcome, std::ostream* out) {
    *out << "exit code " << outcome.exitCode << ", output " << testing::PrintToString(outcome.output)
         << ", errors " << testing::PrintToString(outcome.errors);
}

Program::Program(std::vector<std::string> command, const Surroundings& surroundings) {
    // All memory is allocated before the fork: other threads of the test may be at work.
    std::vector<std::string> environment = environmentIn(surroundings);
    const std::vector<char*> arguments = pointersTo(command);
    const std::vector<char*> variables = pointersTo(environment);
    Pipe input;
    Pipe output;
    Pipe error;

    m_pid = ::fork();
    if (m_pid < 0)
        throw std::runtime_error(std::string("fork: ") + std::strerror(errno));
    if (m_pid == 0) {
        if (streamTo(surroundings.input, input.readEnd, STDIN_FILENO) &&
            streamTo(surroundings.error, error.writeEnd, STDERR_FILENO) &&
            streamTo(surroundings.output, output.writeEnd, STDOUT_FILENO) &&
            (surroundings.folder.empty() || ::chdir(surroundings.folder.c_str()) == 0) &&
            surroundings.prepare())
            ::execvpe(arguments[0], arguments.data(), variables.data());
        ::_exit(kCannotStart);
    }
    m_ended = System::Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, m_pid, 0)));
    if (surroundings.input < 0)
        m_input = std::move(input.writeEnd);
    if (surroundings.output < 0)
        m_outputPipe = std::move(output.readEnd);
    if (surroundings.error < 0)
        m_errorPipe = std::move(error.readEnd);
}

Program::~Program() {
    if (!m_ended)
        return;
    signal(SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
}

void Program::signal(int number) const {
    ::kill(m_pid, number);
}

void Program::write(const std::string& text) const {
    ASSERT_EQ(::write(m_input.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

bool Program::isAlive() const {
    pollfd ended = {m_ended.get(), POLLIN, 0};
    return m_ended && ::poll(&ended, 1, 0) == 0;
}

bool Program::waitForOutput(const std::string& text) {
    const auto deadline = Clock::now() + kPatience;
    while (m_output.find(text) == std::string::npos)
        if (!m_outputPipe || !pump(remaining(deadline)))
            return false;
    return true;
}

int Program::wait() {
    const auto deadline = Clock::now() + kPatience;
    while (m_outputPipe || m_errorPipe || m_ended)
        if (!pump(remaining(deadline)))
            return -1;
    return m_status;
}

Outcome Program::outcome() {
    const int status = wait();
    return {status, m_output, m_error};
}

/// Handles what happens next; false when nothing did in this time.
bool Program::pump(int remainingMilliseconds) {
    std::array<pollfd, 3> sources = {
        {{m_outputPipe.get(), POLLIN, 0}, {m_errorPipe.get(), POLLIN, 0}, {m_ended.get(), POLLIN, 0}}};
    if (::poll(sources.data(), sources.size(), remainingMilliseconds) <= 0)
        return false;
    if (sources[0].revents != 0)
        drain(m_outputPipe, m_output);
    if (sources[1].revents != 0)
        drain(m_errorPipe, m_error);
    if (sources[2].revents != 0) {
        int status = 0;
        ::waitpid(m_pid, &status, 0);
        m_killer = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        m_status = m_killer != 0 ? kSignalBase + m_killer : WEXITSTATUS(status);
        m_ended.reset();
    }
    return true;
}
