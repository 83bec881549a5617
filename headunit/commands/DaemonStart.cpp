#include "commands/DaemonStart.h"

#include <string>

#include "unit/ListeningPort.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestStart{10};
constexpr std::chrono::milliseconds kBetweenLooks{2};

} // namespace

int waitUntilListening(StopSignals& signals, const std::function<std::optional<int>()>& daemonEnded) {
    const Clock::time_point deadline = Clock::now() + kLongestStart;
    while (!isListening(kDaemonPort)) {
        if (const auto status = daemonEnded())
            throw UnitError("the daemon ended with status " + std::to_string(*status) +
                            " before it listened on port " + std::to_string(kDaemonPort));
        if (Clock::now() > deadline)
            throw UnitError("the daemon does not listen on port " + std::to_string(kDaemonPort));
        const int signal = signals.wait(kBetweenLooks);
        if (signal != 0 && signal != SIGCHLD)
            return signal;
    }
    return 0;
}

} // namespace headunit
