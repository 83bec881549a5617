#include "support/Daemon.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "support/Pattern.h"
#include "support/SocketTable.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "wire/Descriptor.h"

namespace {

constexpr int kCannotStart = 127;
constexpr int kSignalBase = 128;
constexpr char kBannerStart[] = "Production Test Server (Build ";
constexpr std::size_t kStampLength = 19;

std::string makeStreamFile() {
    std::array<char, 32> path{"/tmp/daemon-stream-XXXXXX"};
    const System::Descriptor file(::mkostemp(path.data(), O_CLOEXEC));
    if (!file)
        throw std::runtime_error(std::string("mkostemp: ") + std::strerror(errno));
    return path.data();
}

bool streamTo(const std::string& path, int stream) {
    const int file = ::open(path.c_str(), O_WRONLY | O_APPEND);
    return file >= 0 && ::dup2(file, stream) == stream;
}

bool streamTo(std::optional<int> descriptor, const std::string& path, int stream) {
    return descriptor ? ::dup2(*descriptor, stream) == stream : streamTo(path, stream);
}

/// Neither the test's own descriptors nor those of whatever started the tests belong to the unit.
void closeAllBut(std::optional<int> leftOpen) {
    const unsigned first = STDERR_FILENO + 1;
    if (!leftOpen) {
        ::syscall(SYS_close_range, first, ~0U, 0);
        return;
    }
    const auto kept = static_cast<unsigned>(*leftOpen);
    if (kept > first)
        ::syscall(SYS_close_range, first, kept - 1, 0);
    ::syscall(SYS_close_range, kept + 1, ~0U, 0);
    ::fcntl(*leftOpen, F_SETFD, 0);
}

void chooseSupplier(const std::optional<std::string>& supplier) {
    if (supplier)
        ::setenv("FIRST_TIER_SUPPLIER", supplier->c_str(), 1);
    else
        ::unsetenv("FIRST_TIER_SUPPLIER");
}

bool applyLimits(const std::vector<DaemonStart::Limit>& limits) {
    return std::all_of(limits.begin(), limits.end(), [](const DaemonStart::Limit& limit) {
        rlimit both{};
        ::getrlimit(limit.resource, &both);
        both.rlim_cur = limit.value;
        return ::setrlimit(limit.resource, &both) == 0;
    });
}

void become(std::string program, std::vector<std::string> arguments) {
    std::vector<char*> words = {program.data()};
    for (std::string& argument : arguments)
        words.push_back(argument.data());
    words.push_back(nullptr);
    ::execvp(program.c_str(), words.data());
}

[[noreturn]] void becomeDaemon(const DaemonStart& start, const std::string& outputFile,
                               const std::string& errorFile) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const bool streams = streamTo("/dev/null", STDIN_FILENO) &&
                         streamTo(start.standardError, errorFile, STDERR_FILENO) &&
                         streamTo(start.standardOutput, outputFile, STDOUT_FILENO);
    closeAllBut(start.leftOpen);
    for (const int stream : start.closed)
        System::Descriptor(stream).reset();
    chooseSupplier(start.supplier);
    if (streams && applyLimits(start.limits) && enforce(start.refusals))
        become("production", start.arguments);
    ::_exit(kCannotStart);
}

} // namespace

Daemon::Daemon(const DaemonStart& start)
    : m_outputFile(makeStreamFile()), m_errorFile(makeStreamFile()) {
    if (!start.stationLine)
        ::unlink(kStationLine);
    m_pid = ::fork();
    if (m_pid < 0)
        throw std::runtime_error(std::string("fork: ") + std::strerror(errno));
    if (m_pid == 0)
        becomeDaemon(start, m_outputFile, m_errorFile);
    if (start.waitForPort && !eventually([this] { return isListening() || !isAlive(); }))
        throw std::runtime_error("the daemon does not listen");
    if (start.waitForPort && !isAlive())
        throw std::runtime_error("the daemon has ended; its last words: " + error());
}

Daemon::~Daemon() {
    if (m_collected)
        return;
    ::kill(m_pid, SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
}

bool Daemon::isAlive() const {
    siginfo_t information{};
    return !m_collected &&
           ::waitid(P_PID, static_cast<id_t>(m_pid), &information, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           information.si_pid == 0;
}

int Daemon::waitForEnd() {
    if (!eventually([this] { return !isAlive(); }))
        return -1;
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    m_collected = true;
    return WIFSIGNALED(status) ? kSignalBase + WTERMSIG(status) : WEXITSTATUS(status);
}

std::string Daemon::output() const {
    return contentOf(m_outputFile);
}

std::string Daemon::error() const {
    return contentOf(m_errorFile);
}

bool Daemon::waitForOutput(const std::string& all) const {
    return eventually([&] { return output() == all; });
}

bool Daemon::waitForError(const std::string& text) const {
    return eventually([&] { return error().find(text) != std::string::npos; });
}

void Daemon::limit(int resource, rlim_t value) const {
    const auto which = static_cast<__rlimit_resource>(resource);
    rlimit both{};
    ::prlimit(m_pid, which, nullptr, &both);
    both.rlim_cur = std::min(value, both.rlim_max);
    if (::prlimit(m_pid, which, &both, nullptr) != 0)
        throw std::runtime_error(std::string("prlimit: ") + std::strerror(errno));
}

std::string Daemon::buildStamp() const {
    const std::string text = error();
    if (text.rfind(kBannerStart, 0) != 0)
        throw std::runtime_error("no banner: " + text);
    return text.substr(std::strlen(kBannerStart), kStampLength);
}

bool isBannerOnly(const std::string& error) {
    const std::size_t end = error.find(kStartEnd);
    return end != std::string::npos &&
           matchesWhole(error.substr(0, end), "Production Test Server \\(Build " +
                                                  std::string(kBuildStampPattern) + "\\)\n") &&
           matchesWhole(error.substr(end + std::strlen(kStartEnd)),
                        "(" + std::string(kSlowCommand) + ")*");
}
