#include <chrono>
#include <cstdint>
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

constexpr int kRounds = 121;
constexpr int kExchangesPerRound = 250;
const Bound kAtMostOverFloor = Bound::atMost(1.1);

/// The median time of many exchanges over one kept connection, in microseconds.
class RoundTrip {
public:
    RoundTrip(std::uint16_t port, std::string request)
        : m_connection(port), m_request(std::move(request)), m_times(kExchangesPerRound) {}

    double operator()() {
        using Clock = std::chrono::steady_clock;
        for (double& time : m_times) {
            const Clock::time_point start = Clock::now();
            m_connection.exchange(m_request);
            time = std::chrono::duration<double, std::micro>(Clock::now() - start).count();
        }
        return median(m_times);
    }

private:
    Connection m_connection;
    std::string m_request;
    std::vector<double> m_times;
};

void measure(Cores cores, const Options& options, Report& report) {
    const CorePinning pinning(cores);
    const Daemon daemon(options.daemon);
    const std::string ack = framed("ack");
    const std::string status = framed("status");
    const std::string ackAnswer(Connection(Daemon::kPort).exchange(ack));
    const std::string statusAnswer(Connection(Daemon::kPort).exchange(status));

    const FloorServer direct(Handling::Direct, ackAnswer);
    const FloorServer handedOver(Handling::HandedOver, ackAnswer);
    const FloorServer handedOverStatus(Handling::HandedOver, statusAnswer);

    RoundTrip directTrip(direct.port(), ack);
    RoundTrip handedOverTrip(handedOver.port(), ack);
    RoundTrip daemonTrip(Daemon::kPort, ack);
    RoundTrip handedOverStatusTrip(handedOverStatus.port(), status);
    RoundTrip daemonStatusTrip(Daemon::kPort, status);

    Contest contest;
    const std::size_t a = contest.add(std::ref(directTrip));
    const std::size_t b = contest.add(std::ref(handedOverTrip));
    const std::size_t daemonAck = contest.add(std::ref(daemonTrip));
    const std::size_t bStatus = contest.add(std::ref(handedOverStatusTrip));
    const std::size_t daemonStatus = contest.add(std::ref(daemonStatusTrip));
    contest.run(options.rounds(kRounds));

    const std::string where = std::string(", ") + nameOf(cores);
    const auto row = [&](const std::string& what, std::size_t contender, std::size_t floor) {
        return Row{what + where, contest.result(contender), "us", contest.result(floor),
                   contest.ratio(contender, floor)};
    };
    report.add({"floor (a)" + where, contest.result(a), "us"});
    report.add(row("floor (b) to (a)", b, a));
    Row judged = row("ack to (b)", daemonAck, b);
    if (cores == Cores::One)
        judged.bound = kAtMostOverFloor;
    report.add(judged);
    report.add(row("status to (b)", daemonStatus, bStatus));
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "Round trip of a small request",
                        [](const Options& options, Report& report) {
                            measure(Cores::One, options, report);
                            measure(Cores::All, options, report);
                        });
}
