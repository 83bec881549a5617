#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "measuring/Benchmark.h"
#include "measuring/Connection.h"
#include "measuring/Contest.h"
#include "measuring/CorePinning.h"
#include "measuring/Daemon.h"
#include "measuring/FloorServer.h"

using namespace Measuring;

namespace {

constexpr std::size_t kKibi = 1024;
constexpr std::size_t kMebi = 1024 * kKibi;
constexpr std::size_t kSmallest = kKibi;
constexpr std::size_t kLargest = 64 * kMebi;
constexpr std::size_t kLargestQuick = 4 * kMebi;
constexpr std::size_t kStep = 4;
// The sizes between, where neither the fixed cost of a request nor the caches count.
constexpr std::size_t kMiddleFirst = 64 * kKibi;
constexpr std::size_t kMiddleLast = 4 * kMebi;
constexpr std::size_t kBytesPerRound = 4 * kMebi;
constexpr int kRounds = 5;
// The scanner takes no more digits than this from one run.
constexpr std::size_t kHexDigits = 2048;
const Bound kFlat = Bound::atMost(2);

std::string quotedString(std::size_t length) {
    return "ack \"" + std::string(length, 'x') + '"';
}

std::string shortWords(std::size_t length) {
    std::string text = "ack";
    while (text.size() < length)
        text += " aaaa";
    return text;
}

std::string hexPieces(std::size_t length) {
    std::string piece = " hex(";
    while (piece.size() < kHexDigits && piece.size() < length)
        piece += "4a";
    piece += ')';
    std::string text = "ack";
    while (text.size() < length)
        text += piece;
    return text;
}

struct Shape {
    std::string name;
    std::function<std::string(std::size_t)> build;
};

const std::vector<Shape> kShapes{
    {"a quoted string", quotedString}, {"words of 4", shortWords}, {"hex pieces", hexPieces}};

std::string sizeName(std::size_t size) {
    if (size >= kMebi)
        return std::to_string(size / kMebi) + " MiB";
    return std::to_string(size / kKibi) + " KiB";
}

/// Sends the same line again and again; yields nanoseconds per byte of it.
class LineCost {
public:
    LineCost(std::uint16_t port, const std::string& line) : m_connection(port), m_line(line) {}

    double operator()() {
        using Clock = std::chrono::steady_clock;
        const std::size_t repeats = std::max<std::size_t>(1, kBytesPerRound / m_line.size());
        const Clock::time_point start = Clock::now();
        for (std::size_t repeat = 0; repeat < repeats; ++repeat)
            m_connection.exchange(m_line);
        const std::chrono::duration<double, std::nano> time = Clock::now() - start;
        return time.count() / static_cast<double>(repeats * m_line.size());
    }

private:
    Connection m_connection;
    const std::string& m_line;
};

struct Cost {
    double daemon;
    double floor;
    double ratio;
};

Cost measureSize(const std::string& line, const FloorServer& floor, const Options& options) {
    LineCost floorCost(floor.port(), line);
    LineCost daemonCost(Daemon::kPort, line);
    Contest contest;
    const std::size_t a = contest.add(std::ref(floorCost));
    const std::size_t daemon = contest.add(std::ref(daemonCost));
    contest.run(options.rounds(kRounds));
    return {contest.result(daemon), contest.result(a), contest.ratio(daemon, a)};
}

void measureShape(const Shape& shape, const Options& options, Report& report) {
    const Daemon daemon(options.daemon);
    const std::string ack = framed("ack");
    const FloorServer floor(Handling::Direct, std::string(Connection(Daemon::kPort).exchange(ack)));
    const std::size_t largest = options.quick ? kLargestQuick : kLargest;

    double bestDaemon = std::numeric_limits<double>::max();
    double bestFloor = bestDaemon;
    Cost last{};
    for (std::size_t size = kSmallest; size <= largest; size *= kStep) {
        const std::string line = framed(shape.build(size));
        last = measureSize(line, floor, options);
        if (size >= kMiddleFirst && size <= kMiddleLast) {
            bestDaemon = std::min(bestDaemon, last.daemon);
            bestFloor = std::min(bestFloor, last.floor);
        }
        report.add({shape.name + ", " + sizeName(size), last.daemon, "ns/byte", last.floor, last.ratio});
    }
    report.add({shape.name + ", rise to " + sizeName(largest),
                last.daemon / bestDaemon,
                "times",
                last.floor / bestFloor,
                {},
                kFlat});

    const double held = daemon.settledMemoryUse().resident;
    Connection(Daemon::kPort).exchange(ack);
    const MemoryUse after = daemon.settledMemoryUse();
    report.add({shape.name + ", resident at most", after.residentPeak / kKibi, "MiB"});
    report.add({shape.name + ", resident after the last line", held / kKibi, "MiB"});
    report.add({shape.name + ", resident after one more ack", after.resident / kKibi, "MiB"});
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "Cost of a request line by its length, 1 core",
                        [](const Options& options, Report& report) {
                            const CorePinning pinning(Cores::One);
                            for (const Shape& shape : kShapes)
                                measureShape(shape, options, report);
                            report.note("The rise is the cost at the last size to the lowest one from " +
                                        sizeName(kMiddleFirst) + " to " + sizeName(kMiddleLast) + ".");
                            report.note(
                                "The floor of a size is server (a), which looks only for the end of "
                                "the line.");
                        });
}
