#pragma once

#include "client/Deadline.h"

namespace station {

/// How long the line is listened to after a request that is never answered, and after the answer to raw
/// bytes, for what else the unit has to tell.
constexpr Seconds kQuietTime{0.2};

/// A silence after which what came before it is over: the bytes of a frame or a line follow each other
/// without a pause.
constexpr Seconds kGap{0.1};

} // namespace station
