#pragma once

#include "requests/Dice.h"
#include "requests/Exchange.h"

/// A request that is no request of its command: too long, too short, or with a word or a code that the
/// command does not know.
Exchange malformedRequest(Dice& dice);
