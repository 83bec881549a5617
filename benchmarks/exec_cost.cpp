#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "measuring/Benchmark.h"
#include "measuring/ChildProcess.h"
#include "measuring/Connection.h"
#include "measuring/Contest.h"
#include "measuring/CorePinning.h"
#include "measuring/Daemon.h"
#include "measuring/Failure.h"
#include "wire/Descriptor.h"

using namespace Measuring;

namespace {

constexpr int kRounds = 21;
constexpr int kCommandsPerRound = 20;
constexpr double kKibi = 1024;
constexpr double kMemoryInUse = 128 * kKibi;
constexpr std::size_t kHalfLine = std::size_t{8} << 20;
constexpr std::size_t kMostHalfLines = 40;
constexpr int kPatienceMs = 10'000;
constexpr char kShell[] = "/bin/sh";
constexpr char kCommand[] = "true";
constexpr char kCapture[] = "/tmp/benchmark_exec_floor.txt";
const Bound kAtMostOverFloor = Bound::atMost(1.2);

using Descriptor = System::Descriptor;

/// What a shell is started with: its commands come through a pipe, its output goes to a file.
struct Streams {
    Descriptor commandsOut;
    Descriptor commandsIn;
    Descriptor capture;
};

Streams openStreams() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw failure("cannot create a pipe");
    Streams streams{Descriptor(ends[0]), Descriptor(ends[1]),
                    Descriptor(::open(kCapture, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600))};
    if (!streams.capture)
        throw failure(std::string("cannot create ") + kCapture);
    return streams;
}

std::array<char*, 3> shellArguments() {
    static char name[] = "sh";
    static char fromInput[] = "-s";
    return {name, fromInput, nullptr};
}

pid_t spawnShell(const Streams& streams) {
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, streams.commandsOut.get(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, streams.capture.get(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, streams.capture.get(), STDERR_FILENO);
    pid_t pid = -1;
    const auto arguments = shellArguments();
    errno = ::posix_spawn(&pid, kShell, &actions, nullptr, arguments.data(), environ);
    if (errno != 0)
        throw failure("cannot spawn a shell");
    ::posix_spawn_file_actions_destroy(&actions);
    return pid;
}

pid_t forkShell(const Streams& streams) {
    const pid_t pid = ::fork();
    if (pid < 0)
        throw failure("cannot fork");
    if (pid > 0)
        return pid;
    ::dup2(streams.commandsOut.get(), STDIN_FILENO);
    ::dup2(streams.capture.get(), STDOUT_FILENO);
    ::dup2(streams.capture.get(), STDERR_FILENO);
    const auto arguments = shellArguments();
    ::execv(kShell, arguments.data());
    ::_exit(127);
}

void waitForEnd(pid_t pid) {
    const Descriptor end(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
    if (!end)
        throw failure("cannot watch a process");
    pollfd ended{end.get(), POLLIN, 0};
    if (::poll(&ended, 1, kPatienceMs) != 1)
        throw std::runtime_error("a shell does not end");
    int status = 0;
    if (::waitpid(pid, &status, 0) != pid || status != 0)
        throw std::runtime_error("a shell failed");
}

using StartShell = pid_t (*)(const Streams&);

void runOnce(StartShell start) {
    Streams streams = openStreams();
    const pid_t pid = start(streams);
    if (::write(streams.commandsIn.get(), kCommand, sizeof kCommand - 1) < 0)
        throw failure("cannot feed a shell");
    streams.commandsIn.reset();
    streams.commandsOut.reset();
    waitForEnd(pid);
}

/// The median time of many runs, in microseconds.
template <typename Run>
double medianTime(const Run& run) {
    using Clock = std::chrono::steady_clock;
    std::vector<double> times(kCommandsPerRound);
    for (double& time : times) {
        const Clock::time_point start = Clock::now();
        run();
        time = std::chrono::duration<double, std::micro>(Clock::now() - start).count();
    }
    return median(times);
}

/// A process with as much memory in use as the daemon
/// that starts shells when told to, and nothing else.
class BareStarter {
public:
    explicit BareStarter(StartShell start) : BareStarter(start, socketPair()) {}

    double operator()() {
        double time = 0;
        if (::send(m_own.get(), &time, sizeof time, MSG_NOSIGNAL) != sizeof time ||
            ::recv(m_own.get(), &time, sizeof time, 0) != sizeof time)
            throw failure("the bare process does not answer");
        return time;
    }

private:
    using Pair = std::pair<Descriptor, Descriptor>;

    BareStarter(StartShell start, Pair pair)
        : m_process(ChildProcess::running([&] {
              pair.first.reset();
              serve(pair.second.get(), start);
          })),
          m_own(std::move(pair.first)) {}

    static Pair socketPair() {
        std::array<int, 2> ends{};
        if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
            throw failure("cannot connect two processes");
        return {Descriptor(ends[0]), Descriptor(ends[1])};
    }

    static void serve(int channel, StartShell start) {
        const std::vector<char> inUse(static_cast<std::size_t>(kMemoryInUse * kKibi), 'x');
        double time = 0;
        while (::recv(channel, &time, sizeof time, 0) == sizeof time) {
            time = medianTime([start] { runOnce(start); });
            ::send(channel, &time, sizeof time, MSG_NOSIGNAL);
        }
    }

    ChildProcess m_process;
    Descriptor m_own;
};

/// Connections that have sent the first part of a long line each, which the daemon keeps.
std::vector<std::unique_ptr<Connection>> fillMemory(const Daemon& daemon) {
    const std::string halfLine = framed("ack").substr(0, 1) + std::string(kHalfLine, 'x');
    std::vector<std::unique_ptr<Connection>> connections;
    while (daemon.settledMemoryUse().resident < kMemoryInUse) {
        if (connections.size() == kMostHalfLines)
            throw std::runtime_error("the daemon does not keep half lines in memory");
        connections.push_back(std::make_unique<Connection>(Daemon::kPort));
        connections.back()->send(halfLine);
    }
    return connections;
}

void measure(Cores cores, const Options& options, Report& report) {
    const CorePinning pinning(cores);
    const Daemon daemon(options.daemon);
    const std::string ack = framed("ack");
    const std::string exec = framed(std::string("exec command 5 \"") + kCommand + '"');

    Connection connection(Daemon::kPort);
    if (connection.exchange(exec).find("base64()") == std::string_view::npos)
        throw std::runtime_error("the daemon does not run 'true'");
    const auto halfLines = fillMemory(daemon);

    BareStarter spawning(spawnShell);
    BareStarter forking(forkShell);
    Contest contest;
    const std::size_t spawned = contest.add(std::ref(spawning));
    const std::size_t executed =
        contest.add([&] { return medianTime([&] { connection.exchange(exec); }); });
    const std::size_t acknowledged =
        contest.add([&] { return medianTime([&] { connection.exchange(ack); }); });
    const std::size_t forked = contest.add(std::ref(forking));
    contest.run(options.rounds(kRounds));

    const std::string where = std::string(", ") + nameOf(cores);
    report.add({"exec of 'true' to posix_spawn" + where, contest.result(executed), "us",
                contest.result(spawned), contest.ratio(executed, spawned), kAtMostOverFloor});
    report.add({"  a round trip, part of it" + where, contest.result(acknowledged), "us"});
    report.add({"fork and exec to posix_spawn" + where, contest.result(forked), "us",
                contest.result(spawned), contest.ratio(forked, spawned)});
    report.add({"  resident memory of the daemon" + where, daemon.memoryUse().resident / kKibi, "MiB"});
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "Starting a shell command with 128 MiB in use",
                        [](const Options& options, Report& report) {
                            measure(Cores::One, options, report);
                            measure(Cores::All, options, report);
                        });
}
