#include "support/Waiting.h"

void observeFor(std::chrono::milliseconds duration) {
    const auto end = std::chrono::steady_clock::now() + duration;
    for (;;) {
        const auto left = end - std::chrono::steady_clock::now();
        if (left.count() <= 0)
            return;
        const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(left).count();
        ::poll(nullptr, 0, static_cast<int>(milliseconds) + 1);
    }
}
