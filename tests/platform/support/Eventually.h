#pragma once

#include <poll.h>

#include <chrono>

/// Waits until `condition` holds. False when it does not within `patience`.
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds patience = std::chrono::seconds(20)) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        ::poll(nullptr, 0, 1);
    }
    return true;
}
