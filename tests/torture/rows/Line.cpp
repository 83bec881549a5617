// The station's line goes and comes back.
#include <gtest/gtest.h>

#include <string>

#include "Ordeal.h"
#include "rows/Rows.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

/// The line goes; each second time it is away for a while before it comes back.
void loseLine(Ordeal& ordeal, const Witness& witness, unsigned round) {
    Adapter& line = ordeal.bench.line();
    line.pull();
    if (round % 2 == 0) {
        EXPECT_TRUE(witness.seesMore(1));
    }
    line.plug();
    ordeal.bench.expectGreeting();
}

/// After so many bytes of the request, and then of its answer.
void loseAtEachByte(Ordeal& ordeal, const Witness& witness, const Spoken& spoken, unsigned& round) {
    const Adapter& line = ordeal.bench.line();
    for (std::size_t sent = 0; sent < spoken.sent.size(); ++sent) {
        line.send(spoken.sent.substr(0, sent));
        line.waitUntilTaken();
        loseLine(ordeal, witness, ++round);
        ordeal.expect(numbered(ordeal.link, round));
    }
    for (std::size_t received = 0; received <= spoken.received.size(); ++received) {
        line.send(spoken.sent);
        EXPECT_EQ(line.receive(received), spoken.received.substr(0, received));
        loseLine(ordeal, witness, ++round);
        ordeal.expect(numbered(ordeal.link, round));
        ++ordeal.amount.requests;
    }
}

} // namespace

void deviceLoss(Ordeal& ordeal) {
    const std::string bytes = "lost bytes";
    const Witness witness;
    unsigned round = 0;
    for (unsigned turn = 0; turn < ordeal.times(1, 20) && !testing::Test::HasFailure(); ++turn) {
        loseAtEachByte(ordeal, witness, memoryWrite(ordeal.link, 0x300, bytes), round);
        loseAtEachByte(ordeal, witness, memoryRead(ordeal.link, 0x300, bytes), round);
        loseAtEachByte(ordeal, witness, shellCommand(ordeal.link, 60, "echo lost", "lost\n"), round);
        loseAtEachByte(ordeal, witness, numbered(ordeal.link, 1), round);
    }
    ordeal.note = "lost " + std::to_string(round) + " times";
}

void hangUps(Ordeal& ordeal) {
    const unsigned rounds = ordeal.times(1'000, 50'000);
    const Witness witness;
    for (unsigned round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        ordeal.bench.replug();
        // One that nothing ever came from would be taken for a line that does not work, and be tried
        // again in the longer a time.
        ordeal.expect(numbered(ordeal.link, round));
    }
    ordeal.note = std::to_string(rounds) + " hang-ups";
    EXPECT_TRUE(witness.seesMore(1));
}
