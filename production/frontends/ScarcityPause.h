#pragma once

#include <chrono>
#include <thread>

/// Between attempts to get what the system has run out
/// of: short for whoever waits, rare for the processor.
inline void pauseForScarcity() {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}
