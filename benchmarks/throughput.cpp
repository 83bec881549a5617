#include <sys/epoll.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "measuring/Benchmark.h"
#include "measuring/Connection.h"
#include "measuring/Contest.h"
#include "measuring/CorePinning.h"
#include "measuring/Daemon.h"
#include "measuring/Failure.h"
#include "measuring/FloorServer.h"
#include "wire/Descriptor.h"

using namespace Measuring;

namespace {

constexpr int kRounds = 41;
constexpr std::chrono::milliseconds kRoundLength(50);
constexpr std::array<std::size_t, 3> kConnectionCounts{1, 16, 64};
constexpr std::size_t kFewestJudged = 16;
const Bound kAtLeastOfFloor = Bound::atLeast(0.9);

/// One thread that keeps one request in flight on every connection; yields answers per second.
class Load {
public:
    Load(std::uint16_t port, std::size_t connections, std::string request)
        : m_request(std::move(request)), m_readiness(::epoll_create1(EPOLL_CLOEXEC)) {
        if (!m_readiness)
            throw failure("cannot wait for several connections");
        for (std::size_t number = 0; number < connections; ++number)
            add(port);
    }

    double operator()() {
        using Clock = std::chrono::steady_clock;
        const Clock::time_point start = Clock::now();
        for (const auto& connection : m_connections)
            connection->send(m_request);

        std::size_t answers = 0;
        Clock::time_point now = start;
        while (now - start < kRoundLength) {
            for (const epoll_event& event : wait()) {
                auto& connection = *static_cast<Connection*>(event.data.ptr);
                connection.receiveAnswer();
                connection.send(m_request);
                ++answers;
            }
            now = Clock::now();
        }
        for (const auto& connection : m_connections)
            connection->receiveAnswer();
        return static_cast<double>(answers) / std::chrono::duration<double>(now - start).count();
    }

private:
    void add(std::uint16_t port) {
        m_connections.push_back(std::make_unique<Connection>(port));
        Connection& connection = *m_connections.back();
        // Until it is answered the connection may still wait in the server's short queue, and the next
        // one would be turned away for a second.
        connection.exchange(m_request);
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.ptr = &connection;
        if (::epoll_ctl(m_readiness.get(), EPOLL_CTL_ADD, connection.descriptor(), &event) != 0)
            throw failure("cannot wait for a connection");
        m_events.resize(m_connections.size());
    }

    struct Ready {
        const epoll_event* first;
        const epoll_event* last;
        const epoll_event* begin() const { return first; }
        const epoll_event* end() const { return last; }
    };

    Ready wait() {
        int count = 0;
        do {
            count =
                ::epoll_wait(m_readiness.get(), m_events.data(), static_cast<int>(m_events.size()), -1);
        } while (count < 0 && errno == EINTR);
        if (count < 0)
            throw failure("cannot wait for answers");
        return {m_events.data(), m_events.data() + count};
    }

    std::string m_request;
    System::Descriptor m_readiness;
    std::vector<std::unique_ptr<Connection>> m_connections;
    std::vector<epoll_event> m_events;
};

void measure(Cores cores, std::size_t connections, const Options& options, Report& report) {
    const CorePinning pinning(cores);
    const Daemon daemon(options.daemon);
    const std::string ack = framed("ack");
    const std::string answer(Connection(Daemon::kPort).exchange(ack));
    const FloorServer direct(Handling::Direct, answer);
    const FloorServer handedOver(Handling::HandedOver, answer);

    Load directLoad(direct.port(), connections, ack);
    Load handedOverLoad(handedOver.port(), connections, ack);
    Load daemonLoad(Daemon::kPort, connections, ack);

    Contest contest;
    const std::size_t a = contest.add(std::ref(directLoad));
    const std::size_t b = contest.add(std::ref(handedOverLoad));
    const std::size_t daemonAck = contest.add(std::ref(daemonLoad));
    contest.run(options.rounds(kRounds));

    const std::string where = ", " + std::to_string(connections) +
                              (connections == 1 ? " connection, " : " connections, ") + nameOf(cores);
    const auto thousands = [&](std::size_t contender) { return contest.result(contender) / 1000; };
    report.add({"floor (b) to (a)" + where, thousands(b), "1000/s", thousands(a), contest.ratio(b, a)});
    Row row{"ack to (b)" + where, thousands(daemonAck), "1000/s", thousands(b),
            contest.ratio(daemonAck, b)};
    if (cores == Cores::One && connections >= kFewestJudged)
        row.bound = kAtLeastOfFloor;
    report.add(row);
}

} // namespace

int main(int argc, char** argv) {
    return runBenchmark(argc, argv, "Throughput of small requests",
                        [](const Options& options, Report& report) {
                            for (const Cores cores : {Cores::One, Cores::All})
                                for (const std::size_t connections : kConnectionCounts)
                                    measure(cores, connections, options, report);
                        });
}
