#include "support/Daemon.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
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

constexpr char kSupplier[] = "FIRST_TIER_SUPPLIER";
constexpr char kBannerStart[] = "Production Test Server (Build ";
constexpr std::size_t kStampLength = 19;

std::string makeStreamFile() {
    std::array<char, 32> path{"/tmp/daemon-stream-XXXXXX"};
    const System::Descriptor file(::mkostemp(path.data(), O_CLOEXEC));
    if (!file)
        throw std::runtime_error(std::string("mkostemp: ") + std::strerror(errno));
    return path.data();
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

bool applyLimits(const std::vector<DaemonStart::Limit>& limits) {
    return std::all_of(limits.begin(), limits.end(), [](const DaemonStart::Limit& limit) {
        rlimit both{};
        ::getrlimit(limit.resource, &both);
        both.rlim_cur = limit.value;
        return ::setrlimit(limit.resource, &both) == 0;
    });
}

/// In the child.
bool prepareDaemon(const DaemonStart& start) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    closeAllBut(start.leftOpen);
    for (const int stream : start.closed)
        System::Descriptor(stream).reset();
    return applyLimits(start.limits) && enforce(start.refusals);
}

/// A descriptor for what goes into the file.
System::Descriptor streamTo(const std::string& path, int flags = O_WRONLY | O_APPEND) {
    return System::Descriptor(::open(path.c_str(), flags | O_CLOEXEC));
}

} // namespace

Daemon::Daemon(const DaemonStart& start)
    : m_outputFile(makeStreamFile()), m_errorFile(makeStreamFile()) {
    if (!start.stationLine)
        ::unlink(kStationLine);
    const System::Descriptor input = streamTo("/dev/null", O_RDONLY);
    const System::Descriptor output = streamTo(m_outputFile);
    const System::Descriptor error = streamTo(m_errorFile);
    Program::Surroundings surroundings;
    surroundings.hidden = kSupplier;
    if (!start.missingThreads.empty())
        surroundings.environment = {{"LD_PRELOAD", MISSING_THREADS_LIBRARY},
                                    {"MISSING_THREADS", start.missingThreads}};
    if (start.callFaults != nullptr)
        surroundings.environment = {{"LD_PRELOAD", FAILING_CALLS_LIBRARY},
                                    {kFaultPlanVariable, start.callFaults->file()}};
    if (start.supplier)
        surroundings.environment[kSupplier] = *start.supplier;
    surroundings.input = input.get();
    surroundings.output = start.standardOutput.value_or(output.get());
    surroundings.error = start.standardError.value_or(error.get());
    surroundings.prepare = [&start] { return prepareDaemon(start); };
    std::vector<std::string> command = {"production"};
    command.insert(command.end(), start.arguments.begin(), start.arguments.end());
    m_program.emplace(command, surroundings);
    if (start.waitForPort && !eventually([this] { return isListening() || !isAlive(); }))
        throw std::runtime_error("the daemon does not listen");
    if (start.waitForPort && !isAlive())
        throw std::runtime_error("the daemon has ended; its last words: " + this->error());
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
    ::prlimit(pid(), which, nullptr, &both);
    both.rlim_cur = std::min(value, both.rlim_max);
    if (::prlimit(pid(), which, &both, nullptr) != 0)
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
