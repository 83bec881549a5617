#pragma once

#include <poll.h>

#include <chrono>

/// Longer than anything takes that is going to happen at all, also on a loaded machine.
constexpr std::chrono::seconds kPatience{60};

/// Looks until the condition holds. False when it still does not after that time; a shorter one is for
/// what must not happen.
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds patience = kPatience) {
    constexpr int kBetweenLooksMs = 2;
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        ::poll(nullptr, 0, kBetweenLooksMs);
    }
    return true;
}

/// Lets this much time pass while a test measures something.
void observeFor(std::chrono::milliseconds duration);
