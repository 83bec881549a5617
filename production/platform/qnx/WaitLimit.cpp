#include "platform/qnx/WaitLimit.h"

#include <sys/neutrino.h>

#include <cstdint>

namespace System {

bool limitNextWait(std::chrono::nanoseconds limit) {
    const auto time = static_cast<std::uint64_t>(limit.count());
    return ::TimerTimeout(CLOCK_REALTIME, _NTO_TIMEOUT_SEND | _NTO_TIMEOUT_REPLY, nullptr, &time,
                          nullptr) != -1;
}

} // namespace System
