#pragma once

#include <cstdint>
#include <string>

#include "requests/Dice.h"
#include "requests/Exchange.h"
#include "requests/ScratchRequests.h"
#include "requests/UnitRequests.h"

/// All requests of one station, to all commands that there are, in the order that a seed decides; about
/// a third are to be refused. One thread at a time.
class RequestSource {
public:
    RequestSource(std::uint64_t seed, int station, const Medium::Place& medium,
                  const std::string& buildStamp);

    /// The request before it must have been answered.
    Exchange next();

    /// Whether all is in the scratch buffer that should be.
    Exchange last() const { return m_scratch.wholeWindow(); }

private:
    Dice m_dice;
    ScratchRequests m_scratch;
    UnitRequests m_unit;
};
