#include "frontends/RetryPause.h"

#include <algorithm>
#include <chrono>
#include <thread>

void RetryPause::wait() {
    if (m_nextMs != 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(m_nextMs));
    m_nextMs = std::clamp(m_nextMs * 2, kFirstMs, kLongestMs);
}
