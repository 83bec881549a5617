#pragma once

#include <chrono>
#include <cstddef>

#include "Bench.h"
#include "support/DaemonTest.h"

/// What a station is promised. A sanitizer makes the daemon so much slower.
constexpr std::chrono::milliseconds kPromisedAnswer{kSanitized ? 1000 : 100};

/// What can be counted of a daemon from outside.
struct Figures {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    std::size_t children = 0; ///< dead ones that were not collected yet among them

    static Figures of(const Daemon& daemon);
};

/// What must be so after each row, whatever it did. `errorsBefore` is how much the daemon had written to
/// standard error before it. Returns the daemon's figures as they are in the end.
Figures checkAfterwards(Bench& bench, std::size_t errorsBefore);

/// The longest that the daemon took for a right answer, among a status, bytes read from the scratch
/// buffer and a request on its serial line; of each the best of a few attempts, since the machine may be
/// what was slow.
std::chrono::milliseconds answerTime(Bench& bench);
