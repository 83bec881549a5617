// Clients that send byte by byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "Ordeal.h"
#include "rows/Rows.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

constexpr std::size_t kTcpStations = 32;
// Far below the gap that ends a frame.
constexpr std::chrono::milliseconds kPace{2};

/// All send the same byte of their requests, then all the next one.
void askSlowly(Ordeal& ordeal, const std::vector<const ByteStream*>& stations, unsigned number) {
    std::vector<Spoken> requests;
    while (requests.size() < stations.size())
        requests.push_back(numbered(ordeal.link, number + static_cast<unsigned>(requests.size())));
    for (std::size_t at = 0; at < requests.front().sent.size(); ++at) {
        for (std::size_t client = 0; client < stations.size(); ++client)
            if (at < requests[client].sent.size())
                stations[client]->send(requests[client].sent.substr(at, 1));
        observeFor(kPace);
    }
    for (std::size_t client = 0; client < stations.size(); ++client) {
        const std::size_t sent = std::min(requests[client].sent.size(), requests.front().sent.size());
        expectExchange(*stations[client], requests[client].sent.substr(sent), requests[client].received);
        ++ordeal.amount.requests;
    }
}

} // namespace

void slowClients(Ordeal& ordeal) {
    std::vector<Connection> connections(ordeal.link == Link::Tcp ? kTcpStations : 0);
    std::vector<const ByteStream*> stations;
    for (const Connection& connection : connections)
        stations.push_back(&connection);
    if (stations.empty())
        stations.push_back(&ordeal.station());
    ordeal.amount.connections = connections.size();
    const unsigned rounds = ordeal.times(20, 1'000);
    const Witness witness;
    for (unsigned round = 0; round < rounds && !testing::Test::HasFailure(); ++round)
        askSlowly(ordeal, stations, (round + 100) * 100);
    EXPECT_TRUE(witness.seesMore(10));
}
