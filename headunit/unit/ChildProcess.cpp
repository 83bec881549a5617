#include "unit/ChildProcess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>

#include "unit/UnitError.h"
#include "wire/Descriptor.h"

namespace headunit {
namespace {

/// As the system takes them; the texts outlive the result.
std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

/// This process's environment with the changes, as "NAME=VALUE".
std::vector<std::string> changedEnvironment(const Environment& changes) {
    std::vector<std::string> settings;
    for (char** setting = environ; *setting != nullptr; ++setting) {
        const std::string text = *setting;
        if (changes.count(text.substr(0, text.find('='))) == 0)
            settings.push_back(text);
    }
    for (const auto& [name, value] : changes)
        settings.emplace_back(name).append("=").append(value);
    return settings;
}

void unblockSignals() {
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

int statusOf(int waitStatus) {
    return WIFSIGNALED(waitStatus) ? kSignalStatusBase + WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

/// Runs between fork and exec: only calls that are safe there.
[[noreturn]] void becomeCommand(char* const* arguments, char* const* environment, pid_t parent,
                                int standardError, int report) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(kNotFound); // it died before its death could be asked for
    int error = 0;
    if (standardError >= 0 && ::dup2(standardError, STDERR_FILENO) < 0)
        error = errno;
    if (error == 0) {
        unblockSignals();
        ::execvpe(arguments[0], arguments, environment);
        error = errno;
    }
    [[maybe_unused]] const ssize_t reported = ::write(report, &error, sizeof error);
    ::_exit(kNotFound);
}

/// The error number that the child met before it became the command, 0 when it did.
int startError(int report) {
    int error = 0;
    ssize_t count;
    do
        count = ::read(report, &error, sizeof error);
    while (count < 0 && errno == EINTR);
    return count == static_cast<ssize_t>(sizeof error) ? error : 0;
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, int standardError,
                           const Environment& changes) {
    // Made before the fork: after it, a process with threads must not allocate.
    const std::vector<char*> arguments = pointersTo(command);
    const std::vector<std::string> settings = changedEnvironment(changes);
    const std::vector<char*> environment = pointersTo(settings);
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw systemError("cannot make a pipe", errno);
    const System::Descriptor reading(ends[0]);
    System::Descriptor writing(ends[1]);

    const pid_t parent = ::getpid();
    m_pid = ::fork();
    if (m_pid < 0)
        throw systemError("cannot start " + command.front(), errno);
    if (m_pid == 0)
        becomeCommand(arguments.data(), environment.data(), parent, standardError, writing.get());

    writing.reset();
    if (const int error = startError(reading.get()); error != 0) {
        wait();
        throw systemError("cannot start " + command.front(), error);
    }
}

ChildProcess::~ChildProcess() {
    kill();
}

std::optional<int> ChildProcess::ended() {
    return reap(WNOHANG);
}

int ChildProcess::wait() {
    return reap(0).value_or(kNotFound);
}

void ChildProcess::kill() {
    if (ended())
        return;
    ::kill(m_pid, SIGKILL);
    wait();
}

std::optional<int> ChildProcess::reap(int options) {
    if (m_status)
        return m_status;
    int waitStatus = 0;
    pid_t reaped;
    do
        reaped = ::waitpid(m_pid, &waitStatus, options);
    while (reaped < 0 && errno == EINTR);
    if (reaped == m_pid)
        m_status = statusOf(waitStatus);
    if (reaped < 0)
        m_status = kNotFound; // somebody else took its status: it is gone all the same
    return m_status;
}

int executeInPlace(const std::vector<std::string>& command, const Environment& changes) {
    const std::vector<char*> arguments = pointersTo(command);
    const std::vector<std::string> settings = changedEnvironment(changes);
    unblockSignals();
    ::execvpe(arguments[0], arguments.data(), pointersTo(settings).data());
    return errno;
}

Descendants::Descendants() {
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

Descendants::~Descendants() {
    // Each round may bring up orphans of those that were reaped in it.
    do {
        std::ifstream children("/proc/thread-self/children");
        pid_t child;
        while (children >> child)
            ::kill(child, SIGKILL);
    } while (::waitpid(-1, nullptr, 0) > 0 || errno == EINTR);
}

} // namespace headunit
