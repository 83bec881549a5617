#pragma once

#include <chrono>

namespace System {

/// Has the kernel end the next wait of this thread for another process's answer, with ETIMEDOUT, after
/// that time. Reading, writing and waiting for a child are such messages. False and errno on failure.
bool limitNextWait(std::chrono::nanoseconds limit);

} // namespace System
