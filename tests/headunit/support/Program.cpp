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
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "support/Pipe.h"
#include "support/Waiting.h"

namespace headunit_test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

int remaining(Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

/// Takes what is there; closes the pipe at its end.
void drain(System::Descriptor& pipe, std::string& text) {
    std::array<char, 4096> block;
    const ssize_t count = ::read(pipe.get(), block.data(), block.size());
    if (count > 0)
        text.append(block.data(), static_cast<std::size_t>(count));
    if (count == 0)
        pipe.reset();
}

} // namespace

Program::Program(std::vector<std::string> command, const Surroundings& surroundings) {
    std::vector<char*> arguments;
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    Pipe input;
    Pipe output;
    Pipe error;

    m_pid = ::fork();
    if (m_pid == 0) {
        ::dup2(input.readEnd.get(), STDIN_FILENO);
        ::dup2(output.writeEnd.get(), STDOUT_FILENO);
        ::dup2(error.writeEnd.get(), STDERR_FILENO);
        for (const auto& [name, value] : surroundings.environment)
            ::setenv(name.c_str(), value.c_str(), 1);
        if (surroundings.folder.empty() || ::chdir(surroundings.folder.c_str()) == 0)
            ::execvp(arguments[0], arguments.data());
        ::_exit(99);
    }
    m_ended = System::Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, m_pid, 0)));
    m_input = std::move(input.writeEnd);
    m_outputPipe = std::move(output.readEnd);
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
        m_status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        m_ended.reset();
    }
    return true;
}

TestFolder::TestFolder() {
    std::string path = ::testing::TempDir() + "headunit-test-XXXXXX";
    if (::mkdtemp(path.data()) == nullptr)
        throw std::runtime_error("no folder " + path);
    m_path = fs::canonical(path).string();
}

TestFolder::~TestFolder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

std::vector<std::string> TestFolder::names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_path))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    ASSERT_TRUE(file.flush()) << path;
}

} // namespace headunit_test
