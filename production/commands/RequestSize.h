#pragma once

#include <limits>
#include <vector>

#include "core/Answer.h"

/// How many bytes a frame has, or how many tokens a line, and how one that has another number is
/// refused.
struct RequestSize {
    int fewest;
    int most;
    const char* refusal; ///< with the frame's length, or the number of tokens behind the command's name

    bool isMetBy(int count) const { return count >= fewest && count <= most; }
};

/// The most of what has no end.
constexpr int kNoLimit = std::numeric_limits<int>::max();

/// Null when a frame of this length is as it should be; also for a line whose refusal counts all its
/// tokens.
inline Answer checkLength(const RequestSize& size, int length) {
    return size.isMetBy(length) ? nullptr : genericError(size.refusal, length);
}

/// Null when there are as many tokens as there should be.
inline Answer checkTokens(const RequestSize& size, const std::vector<std::vector<char>>& tokens) {
    return size.isMetBy(static_cast<int>(tokens.size())) ? nullptr
                                                         : wrongTokenCount(size.refusal, tokens);
}
