#include "measuring/Waiting.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace Measuring {

void waitUntil(const std::function<bool()>& condition, const std::string& what) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (Clock::now() > deadline)
            throw std::runtime_error(what + " did not happen in time");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace Measuring
