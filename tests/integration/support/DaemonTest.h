#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "support/Connection.h"
#include "support/Daemon.h"
#include "support/Lines.h"
#include "support/ProcessFigures.h"

#ifdef __SANITIZE_ADDRESS__
constexpr bool kAddressSanitized = true;
#else
constexpr bool kAddressSanitized = false;
#endif
#ifdef __SANITIZE_THREAD__
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = kAddressSanitized;
#endif

/// The daemon lives, serves, and had nothing to complain of; nor had a sanitizer in it.
inline void expectHealthy(const Daemon& daemon) {
    EXPECT_TRUE(daemon.isAlive());
    EXPECT_TRUE(isBannerOnly(daemon.error())) << daemon.error();
    Connection station;
    expectExchange(station, request("healthy"), unknown("healthy"));
}

/// Connections that the daemon has accepted.
inline std::vector<Connection> acceptedStations(std::size_t count) {
    std::vector<Connection> stations;
    while (stations.size() < count)
        expectExchange(stations.emplace_back(), request("ack"), answer(""));
    return stations;
}

/// A fresh daemon for each case, which must be healthy in the end.
class DaemonTest : public testing::Test {
protected:
    void TearDown() override { expectHealthy(daemon); }

    Daemon daemon;
};
