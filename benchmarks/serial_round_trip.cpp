#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "measuring/Benchmark.h"
#include "measuring/Contest.h"
#include "measuring/CorePinning.h"
#include "measuring/SerialDaemon.h"
#include "measuring/SerialPeer.h"

using namespace Measuring;

namespace {

constexpr int kRounds = 121;
constexpr int kExchangesPerRound = 100;
constexpr char kStatusRequest[] = "\x02s";
const Bound kAtMostOverPeer = Bound::atMost(1.5);

/// The median time of many exchanges over one line, in microseconds: a request, its answer, and the
/// acknowledgement of the answer.
class RoundTrip {
public:
    RoundTrip(TerminalPair& line, std::string answer)
        : m_line(line), m_answer(std::move(answer)), m_times(kExchangesPerRound) {}

    double operator()() {
        using Clock = std::chrono::steady_clock;
        for (double& time : m_times) {
            const Clock::time_point start = Clock::now();
            m_line.send(kStatusRequest);
            if (m_line.receive(m_answer.size()) != m_answer)
                throw std::runtime_error("a wrong answer");
            m_line.send(kAcknowledgement);
            time = std::chrono::duration<double, std::micro>(Clock::now() - start).count();
        }
        return median(m_times);
    }

private:
    TerminalPair& m_line;
    std::string m_answer;
    std::vector<double> m_times;
};

void measure(Cores cores, const Options& options, Report& report) {
    const CorePinning pinning(cores);
    SerialDaemon daemon(options.daemon);
    const std::string status(daemon.exchange(kStatusRequest));
    TerminalPair peersLine;
    const SerialPeer peer(peersLine.farEnd(), status);

    RoundTrip peersTrip(peersLine, status);
    RoundTrip daemonsTrip(daemon.line(), status);
    Contest contest;
    const std::size_t floor = contest.add(std::ref(peersTrip));
    const std::size_t daemonStatus = contest.add(std::ref(daemonsTrip));
    contest.run(options.rounds(kRounds));

    const std::string where = std::string(", ") + nameOf(cores);
    Row row{"status to the peer" + where, contest.result(daemonStatus), "us", contest.result(floor),
            contest.ratio(daemonStatus, floor)};
    if (cores == Cores::One)
        row.bound = kAtMostOverPeer;
    report.add(row);
    report.add(
        {"  added by the daemon" + where, contest.result(daemonStatus) - contest.result(floor), "us"});
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "Round trip of a status request over the serial line",
                        [](const Options& options, Report& report) {
                            measure(Cores::One, options, report);
                            measure(Cores::All, options, report);
                        });
}
