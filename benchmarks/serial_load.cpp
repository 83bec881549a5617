#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "measuring/Benchmark.h"
#include "measuring/Contest.h"
#include "measuring/CorePinning.h"
#include "measuring/ProcessorTime.h"
#include "measuring/SerialDaemon.h"
#include "measuring/SerialPeer.h"

using namespace Measuring;
using namespace std::string_literals;

namespace {

constexpr int kRounds = 10;
constexpr int kRequestsPerRound = 1000;
constexpr std::size_t kLongestRequest = 255;
constexpr char kUnknownId = 'x';

/// Numbers that a frame carries in two bytes.
std::string numbered(int number) {
    return {static_cast<char>(number >> 8 & 0xFF), static_cast<char>(number & 0xFF)};
}

/// As long as a request can be, for a command that nobody has.
std::string requestFor(int number) {
    std::string frame = ""s + static_cast<char>(kLongestRequest) + kUnknownId + numbered(number);
    while (frame.size() < kLongestRequest)
        frame += static_cast<char>(frame.size());
    return frame;
}

/// The message, then the error frame, which repeats the number.
std::string answerTo(int number) {
    const std::string text = "No Handler for the Command "s + kUnknownId;
    return ""s + static_cast<char>(text.size() + 2) + "d" + text + "\x08" + kUnknownId +
           numbered(number) + "\x01\x01\0\0"s;
}

/// The peer answers everything alike.
std::string peersAnswerTo(int) {
    return answerTo(0);
}

/// Requests one behind the other, each followed at once by the acknowledgement of its answer, so that a
/// byte lost or doubled anywhere would shift everything behind it.
class Load {
public:
    Load(TerminalPair& line, pid_t server, std::function<std::string(int)> expected)
        : m_line(line), m_server(server), m_expected(std::move(expected)) {}

    /// One round; the processor time that the server has used for each request, in microseconds.
    double operator()() {
        using Clock = std::chrono::steady_clock;
        std::string sent;
        std::string expected;
        for (int request = 0; request < kRequestsPerRound; ++request, ++m_number) {
            sent += requestFor(m_number) + kAcknowledgement;
            expected += m_expected(m_number);
        }
        const double before = processorTimeOf(m_server);
        const Clock::time_point start = Clock::now();
        const std::string_view received = m_line.exchange(sent, expected.size());
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        const double used = processorTimeOf(m_server) - before;
        m_wrong += wrongIn(received, expected);
        m_rates.push_back(kRequestsPerRound / seconds);
        return used / kRequestsPerRound;
    }

    int requests() const { return m_number; }
    int wrong() const { return m_wrong; }
    double requestsPerSecond() const { return median(m_rates); }

private:
    static int wrongIn(std::string_view received, std::string_view expected) {
        const std::size_t size = expected.size() / kRequestsPerRound;
        int wrong = 0;
        for (std::size_t at = 0; at < expected.size(); at += size)
            if (received.substr(at, size) != expected.substr(at, size))
                ++wrong;
        return wrong;
    }

    TerminalPair& m_line;
    pid_t m_server;
    std::function<std::string(int)> m_expected;
    int m_number = 0;
    int m_wrong = 0;
    std::vector<double> m_rates;
};

void measure(Cores cores, const Options& options, Report& report) {
    const CorePinning pinning(cores);
    SerialDaemon daemon(options.daemon);
    TerminalPair peersLine;
    const SerialPeer peer(peersLine.farEnd(), peersAnswerTo(0));

    Load peersLoad(peersLine, peer.pid(), peersAnswerTo);
    Load daemonsLoad(daemon.line(), daemon.pid(), answerTo);
    Contest contest;
    const std::size_t floor = contest.add(std::ref(peersLoad));
    const std::size_t daemonUnknown = contest.add(std::ref(daemonsLoad));
    contest.run(options.rounds(kRounds));

    const std::string where = std::string(", ") + nameOf(cores);
    report.add({"processor time of a request" + where, contest.result(daemonUnknown), "us",
                contest.result(floor), contest.ratio(daemonUnknown, floor)});
    report.add({"requests" + where, daemonsLoad.requestsPerSecond() / 1000, "1000/s",
                peersLoad.requestsPerSecond() / 1000});
    report.add({"wrong or missing of " + std::to_string(daemonsLoad.requests()) + " answers" + where,
                static_cast<double>(daemonsLoad.wrong()), "", std::nullopt, std::nullopt,
                Bound::atMost(0)});
    report.add({"lines with bytes beyond the answers" + where, daemon.line().isSilent() ? 0.0 : 1.0, "",
                std::nullopt, std::nullopt, Bound::atMost(0)});
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "Load of the longest requests over the serial line",
                        [](const Options& options, Report& report) {
                            measure(Cores::One, options, report);
                            measure(Cores::All, options, report);
                        });
}
