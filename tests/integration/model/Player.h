#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "model/Unit.h"

/// The first request of a sequence whose answer is not the predicted one.
struct Mismatch {
    std::size_t at;
    std::string expected;
    std::string received;
};

/// Plays the sequence to a unit that is as new, and compares every answer with the model's. Requests of
/// a phase travel at once when they are of several links, each link's on a thread of its own. What the
/// model does not know is left out. `progress` is told after each phase how many requests have been
/// played.
std::optional<Mismatch> play(
    const Sequence& sequence, Unit& unit,
    const std::function<void(std::size_t)>& progress = [](std::size_t) {});
