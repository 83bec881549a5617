#pragma once

#include "client/Deadline.h"

namespace station {

/// Waits for poll() to report `events`, or an error or hang-up that the next call on the descriptor will
/// tell. False when the deadline has passed; that is looked at first, so that a peer which never stops
/// sending does not get more time than a silent one.
bool waitUntilReady(int descriptor, short events, const Deadline& deadline);

/// True for what a non-blocking call fails with when it is to be made again after waiting.
bool isWorthWaiting(int error);

} // namespace station
