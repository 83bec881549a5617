#pragma once

#include "Link.h"
#include "support/ByteStream.h"

/// What came of a request while something is short: only these are honest.
enum class Reaction {
    Answered, ///< by the right answer
    Refused,  ///< by a reason and an error code
    Ended,    ///< the peer has gone, perhaps in the middle of an answer
};

/// Asks and takes in what comes for it; anything else fails the test.
Reaction reactionTo(const ByteStream& station, Link link, const Spoken& asked);
