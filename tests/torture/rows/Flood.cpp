// Requests in order, without waiting.
#include <gtest/gtest.h>

#include <atomic>

#include <string>
#include <thread>

#include "Ordeal.h"
#include "rows/Rows.h"
#include "support/Parallel.h"

namespace {

constexpr unsigned kTcpStations = 4;

/// Each request has its answer, in order. The lines' front end waits as long as it takes with what its
/// station does not read; that of frames gives an answer up that the line does not take, so that its
/// station may be just so far ahead.
void floodLine(Ordeal& ordeal) {
    const unsigned requests = ordeal.times(6'000, 200'000);
    const unsigned ahead = ordeal.link == Link::Frames ? 200 : 2'000;
    for (unsigned number = 0; number < requests + ahead && !testing::Test::HasFailure(); ++number) {
        if (number < requests)
            ordeal.station().send(numbered(ordeal.link, number).sent);
        if (number >= ahead)
            ordeal.expect({"", numbered(ordeal.link, number - ahead).received});
    }
}

/// What follows a command in one read is dropped, so that nobody knows which requests are answered, but
/// for the first one and one that is sent when the others have been taken in. Returns how many were.
unsigned floodConnection(unsigned requests) {
    const Connection station;
    std::thread sender([&] {
        for (unsigned number = 0; number <= requests; ++number) {
            if (number == requests)
                station.waitUntilTaken();
            if (!station.trySend(numbered(Link::Tcp, number).sent))
                break;
        }
    });
    unsigned answers = 0;
    unsigned next = 0;
    for (std::string received; next <= requests && !testing::Test::HasFailure();) {
        received = station.receiveLine();
        received += station.receiveLine();
        unsigned number = next;
        while (number <= requests && received != numbered(Link::Tcp, number).received)
            ++number;
        EXPECT_LE(number, requests) << "no answer, or one out of order: " << received;
        EXPECT_TRUE(answers > 0 || number == 0) << "the first request has no answer";
        next = number + 1;
        ++answers;
    }
    sender.join();
    return answers;
}

} // namespace

void flood(Ordeal& ordeal) {
    if (ordeal.link != Link::Tcp)
        return floodLine(ordeal);
    const unsigned requests = ordeal.times(10'000, 200'000);
    std::atomic<unsigned> answers{0};
    runInThreads(kTcpStations, [&](std::size_t) { answers += floodConnection(requests); });
    ordeal.amount = {std::size_t{kTcpStations} * (requests + 1), kTcpStations, 0};
    ordeal.note = std::to_string(answers) + " answered, the others share a read with one";
}
