#include "frontends/RetryPause.h"

#include <poll.h>

#include <algorithm>

void RetryPause::wait() {
    if (m_nextMs != 0)
        ::poll(nullptr, 0, m_nextMs);
    m_nextMs = std::clamp(m_nextMs * 2, kFirstMs, kLongestMs);
}
