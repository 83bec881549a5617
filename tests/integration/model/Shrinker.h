#pragma once

#include <cstddef>
#include <functional>
#include <optional>

#include "model/Request.h"

/// Makes a sequence that fails as short and as plain as it can: it leaves requests out, first many at
/// once and then single ones, and then makes their arguments zero, small or short. Requests of several
/// links at once come one after the other in the result when that fails, too.
class Shrinker {
public:
    /// Plays a sequence to a unit that is as new: the place of the first wrong answer.
    using Attempt = std::function<std::optional<std::size_t>(const Sequence&)>;

    Shrinker(Attempt attempt, std::size_t mostAttempts)
        : m_attempt(std::move(attempt)), m_mostAttempts(mostAttempts) {}

    /// `wrongAt` is the place of the first wrong answer in the sequence.
    Sequence shrink(Sequence failing, std::size_t wrongAt);

    std::size_t attempts() const { return m_attempts; }

private:
    bool fails(const Sequence& candidate);
    bool leaveOut();
    bool leaveOutChunks(std::size_t size);
    bool simplify();

    Attempt m_attempt;
    std::size_t m_mostAttempts;
    std::size_t m_attempts = 0;
    Sequence m_best;
};
