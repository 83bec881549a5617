#pragma once

/// Closes each device that requests may have left open; the daemon keeps one until it is told to close
/// it.
void closeDevices();
