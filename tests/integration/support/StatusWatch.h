#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "support/BareExchange.h"
#include "support/Delays.h"
#include "support/Witness.h"

/// What the daemon answers while nothing disturbs it.
std::string undisturbedStatus();

/// A station that keeps asking for the status, from the making of this to its end. Beside it, bytes are
/// exchanged with no daemon behind them: what those wait for is what the machine adds, because it has
/// other things to do.
class StatusWatch {
public:
    /// Every answer has to be `status`.
    explicit StatusWatch(const std::string& status);

    /// Waits until so many more answers have come; false when they do not.
    bool seesMore(long answers) const { return m_witness->seesMore(answers); }

    /// Ends it: how much longer an answer took at most
    /// than an exchange without a daemon at the same time.
    std::chrono::milliseconds longestDelay();

private:
    Delays m_bareDelays;
    Delays m_statusDelays;
    std::optional<BareExchange> m_bare;
    std::optional<Witness> m_witness;
};

/// Fails when the longest delay of a status is longer than the daemon promises in each of a few
/// attempts: on a machine that is busy, the one thread may be kept waiting and the other not.
void expectStatusInTime(const std::function<std::chrono::milliseconds()>& longestDelay);
