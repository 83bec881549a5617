// Memory that is short.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <iterator>
#include <memory>
#include <string>

#include "Ordeal.h"
#include "rows/Answered.h"
#include "rows/Rows.h"
#include "support/Parallel.h"

namespace {

constexpr unsigned kTcpStations = 4;
constexpr std::uint64_t kEvery[] = {101, 31, 13, 7, 3};
constexpr std::size_t kRoom = std::size_t{32} << 20;
constexpr std::size_t kBlock = 64 * 1024;

Spoken anyRequest(Link link, unsigned number) {
    switch (number % 16) {
        case 0:
            return shellCommand(link, 60, "echo short", "short\n");
        case 1:
        case 2:
            return memoryRead(link, 0x600, std::string(100, '\0'));
        default:
            return numbered(link, number);
    }
}

struct Reactions {
    std::atomic<unsigned> answered{0};
    std::atomic<unsigned> refused{0};
    std::atomic<unsigned> ended{0};

    void add(Reaction reaction) {
        ++(reaction == Reaction::Answered ? answered : reaction == Reaction::Refused ? refused : ended);
    }
};

/// A station that comes again whenever its connection has ended.
void askWhileShort(Reactions& reactions, unsigned requests) {
    auto station = std::make_unique<Connection>();
    for (unsigned number = 0; number < requests && !testing::Test::HasFailure(); ++number) {
        const Reaction reaction = reactionTo(*station, Link::Tcp, anyRequest(Link::Tcp, number));
        reactions.add(reaction);
        if (reaction == Reaction::Ended)
            station = std::make_unique<Connection>();
    }
}

/// The line's station sends, whatever comes: its line may have been closed and opened meanwhile.
void sendWhileShort(Ordeal& ordeal, unsigned requests) {
    const ByteStream& line = ordeal.bench.line();
    for (unsigned number = 0; number < requests; ++number) {
        line.send(anyRequest(ordeal.link, number).sent);
        while (line.hasInputWithin(std::chrono::milliseconds(2)))
            line.receiveSome(kBlock);
    }
}

} // namespace

void failedAllocations(Ordeal& ordeal) {
    Reactions reactions;
    const unsigned requests = ordeal.times(300, 20'000);
    for (const std::uint64_t every : kEvery) {
        ordeal.bench.faults().failEvery(Fault::NoMemory, every);
        runInThreads(kTcpStations + 1, [&](std::size_t number) {
            if (number == kTcpStations)
                sendWhileShort(ordeal, requests);
            else
                askWhileShort(reactions, requests);
        });
        ordeal.bench.faults().stop();
        ASSERT_TRUE(ordeal.bench.daemon().isAlive()) << "each " << every << " failed";
        ordeal.bench.resynchronise();
        for (unsigned number = 0; number < 3; ++number)
            ordeal.expect(anyRequest(ordeal.link, number));
        ordeal.amount.requests += (kTcpStations + 1) * requests;
    }
    ordeal.note = std::to_string(reactions.answered) + " answered over tcp, " +
                  std::to_string(reactions.refused) + " refused, " + std::to_string(reactions.ended) +
                  " ended";
    EXPECT_GT(reactions.answered, 0U);
    EXPECT_GT(reactions.refused + reactions.ended, 0U) << "nothing failed";
}

void endlessLine(Ordeal& ordeal) {
    const Daemon& daemon = ordeal.bench.daemon();
    daemon.limit(RLIMIT_AS, addressSpaceBytes(daemon.pid()) + kRoom);
    const std::string block(kBlock, 'n');
    for (unsigned round = 0; round < ordeal.times(1, 50) && !testing::Test::HasFailure(); ++round) {
        ordeal.station().send("\x02");
        std::size_t sent = 0;
        // Over TCP the connection ends; the station's line is opened anew, with a greeting.
        while (sent < 2 * kRoom && !ordeal.station().hasInputWithin(std::chrono::milliseconds(0)) &&
               ordeal.station().trySend(block))
            sent += block.size();
        EXPECT_LT(sent, 2 * kRoom) << "it has taken all of it";
        ordeal.amount.bytes += sent;
        if (ordeal.link == Link::Tcp) {
            EXPECT_EQ(ordeal.station().receiveUntilClosed(), "");
            ordeal.leave();
        } else {
            ordeal.bench.resynchronise();
        }
        ordeal.expect(numbered(ordeal.link, round));
        ordeal.expect(shellCommand(ordeal.link, 60, "echo next", "next\n"));
    }
}
