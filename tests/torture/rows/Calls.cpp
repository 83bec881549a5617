// Calls that a signal has interrupted, or that have moved half of what they could: nobody is to notice.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Ordeal.h"
#include "rows/Rows.h"
#include "support/Parallel.h"

namespace {

constexpr unsigned kTcpStations = 3;
constexpr std::uint64_t kEvery[] = {101, 31, 13};

/// What a line of frames does not take of an answer is not sent again, by the protocol.
std::vector<Fault> faultsOn(Link link) {
    if (link == Link::Frames)
        return {Fault::Interruption, Fault::HalfRead};
    return {Fault::Interruption, Fault::HalfRead, Fault::HalfWrite};
}

Spoken anyRequest(Link link, unsigned number) {
    if (number % 20 == 0)
        return shellCommand(link, 60, "echo interrupted", "interrupted\n");
    if (number % 3 == 0)
        return memoryRead(link, 0x900, std::string(60, '\0'));
    return numbered(link, number);
}

void askAll(const ByteStream& station, Link link, unsigned requests) {
    for (unsigned number = 0; number < requests && !testing::Test::HasFailure(); ++number) {
        const Spoken asked = anyRequest(link, number);
        expectExchange(station, asked.sent, asked.received);
    }
}

} // namespace

void brokenCalls(Ordeal& ordeal) {
    const unsigned requests = ordeal.times(300, 20'000);
    std::uint64_t calls = 0;
    for (const Fault fault : faultsOn(ordeal.link)) {
        for (const std::uint64_t every : kEvery) {
            SCOPED_TRACE("each " + std::to_string(every) + ", fault " +
                         std::to_string(static_cast<int>(fault)));
            ordeal.bench.faults().failEvery(fault, every);
            runInThreads(kTcpStations + 1, [&](std::size_t number) {
                if (number == kTcpStations)
                    return askAll(ordeal.bench.line(), ordeal.link, requests);
                const Connection station;
                askAll(station, Link::Tcp, requests);
            });
            const std::uint64_t counted = ordeal.bench.faults().stop();
            EXPECT_GT(counted, every) << "nothing went wrong";
            calls += counted / every;
            ordeal.amount.requests += (kTcpStations + 1) * requests;
        }
    }
    ordeal.note = std::to_string(calls) + " calls went wrong";
}
