#include <sys/resource.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "measuring/Benchmark.h"
#include "measuring/Connection.h"
#include "measuring/Daemon.h"
#include "measuring/Failure.h"
#include "measuring/Waiting.h"

using namespace Measuring;

namespace {

constexpr double kKibi = 1024;
constexpr std::size_t kConnections = 1000;
constexpr std::size_t kQuickConnections = 100;
constexpr std::size_t kPageSize = 4096;
constexpr std::size_t kTouchedPages = 1024;
const Bound kAtMostAfterStart = Bound::atMost(6);
const Bound kAtMostPerConnection = Bound::atMost(16);
const Bound kAtMostOnFirstUse = Bound::atMost(64);
// A page may be touched only by being written; the rest is what an allocator keeps beside it.
const Bound kAtMostPerTouchedPage = Bound::atMost(1.1);

void allowManyConnections() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        throw failure("cannot read the limit of open files");
    limit.rlim_cur = limit.rlim_max;
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0)
        throw failure("cannot raise the limit of open files");
}

void measureStart(const Options& options, Report& report) {
    const Daemon daemon(options.daemon);
    const MemoryUse memory = daemon.settledMemoryUse();
    report.add({"resident after start-up", memory.resident / kKibi, "MiB", {}, {}, kAtMostAfterStart});
    report.add({"  a fair share of shared pages (PSS)", memory.proportional / kKibi, "MiB"});
    report.add({"  not shared", memory.exclusive / kKibi, "MiB"});
    report.add({"  threads", static_cast<double>(threadsOf(daemon.pid())), ""});
}

// The daemon accepts before the next one connects: its queue is short, and a connection that finds it
// full tries again only after a second.
std::vector<std::unique_ptr<Connection>> connect(const Daemon& daemon, std::size_t count) {
    std::vector<std::unique_ptr<Connection>> connections;
    const int before = threadsOf(daemon.pid());
    while (connections.size() < count) {
        connections.push_back(std::make_unique<Connection>(Daemon::kPort));
        const int expected = before + static_cast<int>(connections.size());
        waitUntil([&] { return threadsOf(daemon.pid()) >= expected; }, "a thread for a connection");
    }
    return connections;
}

void measureConnections(bool used, const Options& options, Report& report) {
    const Daemon daemon(options.daemon);
    const std::size_t count = options.quick ? kQuickConnections : kConnections;
    const double before = daemon.settledMemoryUse().resident;
    const auto connections = connect(daemon, count);
    if (used)
        for (const auto& connection : connections)
            connection->exchange(framed("ack"));
    const double added = daemon.settledMemoryUse().resident - before;
    report.add(
        {std::to_string(count) + " idle connections, " + (used ? "one request each" : "never used"),
         added / static_cast<double>(count),
         "KiB each",
         {},
         {},
         kAtMostPerConnection});
}

void measureScratchBuffer(const Options& options, Report& report) {
    const Daemon daemon(options.daemon);
    Connection connection(Daemon::kPort);
    connection.exchange(framed("ack"));
    const double before = daemon.settledMemoryUse().resident;
    if (connection.exchange(framed("memory read 8bit 1 0")).find("hex(") == std::string_view::npos) {
        report.note("The scratch buffer was not measured: this daemon does not serve 'memory'.");
        return;
    }
    const double afterRead = daemon.settledMemoryUse().resident;
    for (std::size_t page = 0; page < kTouchedPages; ++page)
        connection.exchange(
            framed("memory write 8bit 1 " + std::to_string(page * kPageSize) + " hex(ff)"));
    const double afterWrites = daemon.settledMemoryUse().resident;

    const double touched = static_cast<double>(kTouchedPages * kPageSize) / kKibi;
    report.add({"scratch buffer, one byte read", afterRead - before, "KiB", {}, {}, kAtMostOnFirstUse});
    report.add({"scratch buffer, " + std::to_string(kTouchedPages) + " pages written",
                afterWrites - afterRead, "KiB", touched, (afterWrites - afterRead) / touched,
                kAtMostPerTouchedPage});
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "Resident memory", [](const Options& options, Report& report) {
        allowManyConnections();
        measureStart(options, report);
        measureConnections(false, options, report);
        measureConnections(true, options, report);
        measureScratchBuffer(options, report);
    });
}
