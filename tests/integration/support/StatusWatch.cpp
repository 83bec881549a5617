#include "support/StatusWatch.h"

#include <gtest/gtest.h>

#include "support/Connection.h"
#include "support/DaemonTest.h"
#include "support/Lines.h"

namespace {

// A sanitizer makes the daemon so much slower.
constexpr std::chrono::milliseconds kPromised{kSanitized ? 1000 : 100};
constexpr int kAttempts = 3;

} // namespace

std::string undisturbedStatus() {
    Connection station;
    station.send(request("status"));
    return station.receiveLine();
}

StatusWatch::StatusWatch(const std::string& status) {
    m_bare.emplace(m_bareDelays);
    m_witness.emplace(request("status"), status, m_statusDelays);
}

std::chrono::milliseconds StatusWatch::longestDelay() {
    m_witness.reset();
    m_bare.reset();
    return m_statusDelays.longestBeyond(m_bareDelays);
}

void expectStatusInTime(const std::function<std::chrono::milliseconds()>& longestDelay) {
    std::chrono::milliseconds delay{};
    for (int attempt = 0; attempt < kAttempts && !testing::Test::HasFailure(); ++attempt) {
        delay = longestDelay();
        if (delay <= kPromised)
            return;
    }
    EXPECT_LE(delay, kPromised) << "each time";
}
