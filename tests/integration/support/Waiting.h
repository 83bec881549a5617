#pragma once

#include <chrono>
#include <functional>

/// Longer than anything takes that is going to happen at all, also on a loaded machine.
constexpr std::chrono::seconds kPatience{60};

/// Looks until the condition holds. False when it still does not after `kPatience`.
bool eventually(const std::function<bool()>& condition);

/// Lets this much time pass while a test measures something.
void observeFor(std::chrono::milliseconds duration);
