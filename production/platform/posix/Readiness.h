#pragma once

#include <chrono>

namespace System {

/// Waits until one of the `poll` events, or an end or error, is there. False and `errno` on failure:
/// ETIMEDOUT when the deadline has passed.
bool waitUntilReady(int descriptor, short events, std::chrono::steady_clock::time_point deadline);

} // namespace System
