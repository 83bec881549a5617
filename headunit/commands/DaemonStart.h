#pragma once

#include <functional>
#include <optional>

#include "unit/StopSignals.h"

namespace headunit {

/// Blocks until the daemon's port accepts connections in this process's network (returns 0) or a stop
/// signal has come (returns it). `daemonEnded` gives the daemon's exit status once it has ended. Throws
/// UnitError when the daemon ends before it listens, or does not listen within 10 seconds.
int waitUntilListening(StopSignals& signals, const std::function<std::optional<int>()>& daemonEnded);

} // namespace headunit
