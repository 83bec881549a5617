// A thousand connections.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <vector>

#include "Ordeal.h"
#include "rows/Rows.h"

namespace {

constexpr unsigned kConnections = 1'000;

} // namespace

void thousandConnections(Ordeal& ordeal) {
    allowConnections(kConnections);
    const Daemon& daemon = ordeal.bench.daemon();
    daemon.limit(RLIMIT_NOFILE, RLIM_INFINITY);
    for (unsigned round = 0; round < ordeal.times(2, 50) && !testing::Test::HasFailure(); ++round) {
        std::vector<Connection> stations;
        stations.reserve(kConnections);
        for (unsigned number = 0; number < kConnections; ++number) {
            const Spoken asked = numbered(Link::Tcp, number);
            expectExchange(stations.emplace_back(), asked.sent, asked.received);
        }
        EXPECT_EQ(openDescriptors(daemon.pid()).size(), kConnections + ordeal.bench.descriptors());
        // All at once, answered one after the other.
        for (unsigned number = 0; number < kConnections; ++number)
            stations[number].send(numbered(Link::Tcp, number).sent);
        for (unsigned number = 0; number < kConnections; ++number)
            expectExchange(stations[number], "", numbered(Link::Tcp, number).received);
        ordeal.amount.connections += kConnections;
        ordeal.amount.requests += std::size_t{2} * kConnections;
        if (round % 2 == 0)
            for (Connection& station : stations)
                station.vanish();
    }
}
