// Stations that end their sending, or go before their answer comes.
#include <gtest/gtest.h>

#include <string>

#include "Ordeal.h"
#include "rows/Rows.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

constexpr char kSlowText[] = "sleep 0.05; echo slow";

/// Quick ones, and one whose answer takes a while.
Spoken anyRequest(Ordeal& ordeal, unsigned number) {
    constexpr unsigned kSlow = 20;
    if (number % kSlow == 0)
        return shellCommand(ordeal.link, 60, kSlowText, "slow\n");
    if (number % 2 == 0)
        return memoryRead(ordeal.link, 0x200 + number % 0x100, std::string(64, '\0'));
    return numbered(ordeal.link, number);
}

void leave(Connection& station, unsigned way) {
    if (way == 0)
        return station.close();
    if (way == 1)
        station.shutdownSending();
    station.vanish();
}

void leaveByTcp(Ordeal& ordeal, unsigned number) {
    Connection station;
    station.send(anyRequest(ordeal, number).sent);
    if (ordeal.dice.oneIn(2))
        station.waitUntilTaken();
    leave(station, ordeal.dice.below(3));
    ++ordeal.amount.connections;
}

/// The line goes; what the unit says on a new one begins with its greeting.
void leaveByLine(Ordeal& ordeal, unsigned number) {
    const Spoken spoken = anyRequest(ordeal, number);
    ordeal.station().send(spoken.sent);
    if (ordeal.dice.oneIn(2))
        ordeal.station().receive(ordeal.dice.below(static_cast<unsigned>(spoken.received.size())));
    ordeal.bench.replug();
    ordeal.expect(numbered(ordeal.link, number));
}

} // namespace

void closeBeforeTheAnswer(Ordeal& ordeal) {
    const unsigned rounds =
        ordeal.link == Link::Tcp ? ordeal.times(500, 20'000) : ordeal.times(40, 1'000);
    const Witness witness;
    for (unsigned round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        if (ordeal.link == Link::Tcp)
            leaveByTcp(ordeal, round);
        else
            leaveByLine(ordeal, round);
        ++ordeal.amount.requests;
    }
    EXPECT_TRUE(witness.seesMore(1));
}

void halfClose(Ordeal& ordeal) {
    const unsigned rounds = ordeal.times(400, 10'000);
    const Witness witness;
    for (unsigned round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        const Spoken spoken = anyRequest(ordeal, round);
        const bool isWhole = ordeal.dice.oneIn(2);
        const std::size_t length =
            isWhole ? spoken.sent.size() : ordeal.dice.below(static_cast<unsigned>(spoken.sent.size()));
        const Connection station;
        station.send(spoken.sent.substr(0, length));
        station.shutdownSending();
        EXPECT_EQ(station.receiveUntilClosed(), isWhole ? spoken.received : "");
        ++ordeal.amount.connections;
        ordeal.amount.requests += isWhole ? 1 : 0;
    }
    EXPECT_TRUE(witness.seesMore(1));
}
