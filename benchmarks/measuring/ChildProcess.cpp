#include "measuring/ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <utility>

#include "measuring/Failure.h"

namespace Measuring {

namespace {

constexpr int kFailed = 127;
constexpr int kSignalBase = 128;

void becomeQuiet() {
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nowhere < 0)
        throw failure("cannot open /dev/null");
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::dup2(nowhere, stream) < 0)
            throw failure("cannot redirect a stream");
}

} // namespace

ChildProcess ChildProcess::running(const std::function<void()>& body) {
    std::fflush(nullptr);
    const pid_t pid = ::fork();
    if (pid < 0)
        throw failure("cannot start a process");
    if (pid > 0)
        return ChildProcess(pid);
    try {
        if (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0)
            throw failure("cannot tie a process to its parent");
        body();
        ::_exit(0);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    ::_exit(kFailed);
}

ChildProcess ChildProcess::program(const std::string& path) {
    return command({path});
}

ChildProcess ChildProcess::command(const std::vector<std::string>& words) {
    return running([&words] {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (const std::string& word : words)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        becomeQuiet();
        ::execv(arguments.front(), arguments.data());
        throw failure("cannot run " + words.front());
    });
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept : m_pid(std::exchange(other.m_pid, -1)) {}

ChildProcess::~ChildProcess() {
    if (m_pid < 0)
        return;
    ::kill(m_pid, SIGKILL);
    while (::waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

bool ChildProcess::isAlive() const {
    siginfo_t ended{};
    return ::waitid(P_PID, static_cast<id_t>(m_pid), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           ended.si_pid == 0;
}

int ChildProcess::waitForEnd() {
    int status = 0;
    while (::waitpid(m_pid, &status, 0) < 0)
        if (errno != EINTR)
            throw failure("cannot wait for a process");
    m_pid = -1;
    return WIFSIGNALED(status) ? kSignalBase + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace Measuring
