// Signals that mean nothing to the daemon, a thousand a second.
#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <iterator>
#include <string>
#include <thread>

#include "Ordeal.h"
#include "rows/Rows.h"
#include "support/Waiting.h"

namespace {

// All that a daemon ignores or that are ignored by default, and the pair of a debugger or a terminal,
// which alone does interrupt waits.
constexpr int kSignals[] = {SIGCHLD, SIGPIPE, SIGWINCH, SIGURG, SIGCONT, SIGSTOP, SIGCONT};

/// Sends them from its making to its end.
class Storm {
public:
    explicit Storm(pid_t pid) : m_pid(pid), m_thread([this] { blow(); }) {}
    Storm(const Storm&) = delete;
    Storm& operator=(const Storm&) = delete;
    ~Storm() {
        m_stop = true;
        m_thread.join();
    }

    unsigned sent() const { return m_sent; }

private:
    void blow() {
        auto next = std::chrono::steady_clock::now();
        while (!m_stop || m_sent % std::size(kSignals) != 0) { // it does not end with a stop
            ::kill(m_pid, kSignals[m_sent++ % std::size(kSignals)]);
            std::this_thread::sleep_until(next += std::chrono::milliseconds(1));
        }
    }

    const pid_t m_pid;
    std::atomic<bool> m_stop{false};
    std::atomic<unsigned> m_sent{0};
    std::thread m_thread;
};

} // namespace

void signalStorm(Ordeal& ordeal) {
    const unsigned wanted = ordeal.times(3'000, 300'000);
    const std::string bytes = "in a storm";
    const Storm storm(ordeal.bench.daemon().pid());
    for (unsigned round = 0; storm.sent() < wanted && !testing::Test::HasFailure(); ++round) {
        ordeal.expect(numbered(ordeal.link, round));
        ordeal.expect(memoryWrite(ordeal.link, 0x500, bytes + std::to_string(round)));
        ordeal.expect(memoryRead(ordeal.link, 0x500, bytes + std::to_string(round)));
        if (round % 20 == 0)
            ordeal.expect(shellCommand(ordeal.link, 60, "sleep 0.02; echo storm", "storm\n"));
        if (round % 50 == 0)
            ordeal.leave();
    }
    ordeal.note = std::to_string(storm.sent()) + " signals";
}
