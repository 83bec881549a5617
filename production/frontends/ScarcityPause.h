#pragma once

#include <poll.h>

/// Between attempts to get what the system has run out
/// of: short for whoever waits, rare for the processor.
inline void pauseForScarcity() {
    constexpr int kPauseMs = 50;
    ::poll(nullptr, 0, kPauseMs);
}
