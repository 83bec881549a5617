// Clients that never read, and go or read late.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Ordeal.h"
#include "rows/Rows.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

constexpr std::size_t kMebi = std::size_t{1} << 20;
// More than the unit's system keeps of what a station with a small buffer does not read.
constexpr std::size_t kMoreThanBuffered = 16 * kMebi;
constexpr long kSomeAnswers = 100;
constexpr unsigned kPiled = 50;

void expectOthersServed() {
    const Witness witness;
    EXPECT_TRUE(witness.seesMore(kSomeAnswers));
}

/// Each second one goes by a reset, the others read all of it in the end.
void deafConnections(Ordeal& ordeal) {
    const std::string before = contentOf(kImageVersionFile);
    const std::string content(kMoreThanBuffered, 'x');
    const std::string received = answer("status base64(" + base64(content) + ")");
    writeFile(kImageVersionFile, content);
    std::vector<Connection> deaf;
    while (deaf.size() < ordeal.times(6, 40)) {
        deaf.push_back(Connection::withSmallBuffer());
        deaf.back().send(request("status 01"));
        ASSERT_TRUE(deaf.back().hasInputWithin(kPatience));
        for (unsigned number = 0; number < kPiled; ++number)
            deaf.back().send(numbered(Link::Tcp, number).sent);
    }
    expectOthersServed();
    for (std::size_t at = 0; at < deaf.size(); ++at) {
        if (at % 2 == 0) {
            deaf[at].vanish();
            continue;
        }
        expectExchange(deaf[at], "", received + numbered(Link::Tcp, 0).received);
        ordeal.amount.bytes += received.size();
    }
    writeFile(kImageVersionFile, before);
    ordeal.amount.connections = deaf.size();
    ordeal.amount.requests = deaf.size() * (1 + kPiled);
}

/// The line takes a part of the answer; what is asked meanwhile waits, and is answered in order.
void deafStationOfLines(Ordeal& ordeal) {
    const std::string output(300'000, 'x');
    const Spoken shell =
        shellCommand(Link::Lines, 60, "head -c 300000 /dev/zero | tr '\\000' x", output);
    for (unsigned round = 0; round < ordeal.times(2, 50); ++round) {
        ordeal.expect({shell.sent, ""});
        ASSERT_FALSE(ordeal.station().isSilentFor(kPatience));
        for (unsigned number = 0; number < kPiled; ++number)
            ordeal.station().send(numbered(Link::Lines, number).sent);
        expectOthersServed();
        ordeal.expect({"", shell.received});
        for (unsigned number = 0; number < kPiled; ++number)
            ordeal.expect({"", numbered(Link::Lines, number).received});
    }
}

/// The unit gives up each answer that the line does not take.
void deafStationOfFrames(Ordeal& ordeal) {
    const Spoken read = memoryRead(Link::Frames, 0x100, std::string(100, '\0'));
    for (unsigned round = 0; round < ordeal.times(1, 20); ++round) {
        for (unsigned sent = 0; sent < ordeal.times(5'000, 5'000); ++sent)
            ordeal.expect({read.sent, ""});
        expectOthersServed();
        const std::size_t kept = ordeal.bench.resynchronise();
        EXPECT_LT(kept, ordeal.times(5'000, 5'000) * read.received.size()) << "the line was never full";
        ordeal.note = std::to_string(kept) + " bytes kept";
        ordeal.expect(numbered(Link::Frames, round));
    }
}

} // namespace

void neverReads(Ordeal& ordeal) {
    if (ordeal.link == Link::Tcp)
        deafConnections(ordeal);
    else if (ordeal.link == Link::Lines)
        deafStationOfLines(ordeal);
    else
        deafStationOfFrames(ordeal);
}
