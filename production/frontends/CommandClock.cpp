#include "frontends/CommandClock.h"

#include <ctime>

#include "core/Diagnostics.h"

namespace {

constexpr char kAttention[] = "### ATTENTION: Command-Runtime for \"%s\": %llu ms";

constexpr std::uint64_t kMsPerSecond = 1000;
constexpr std::uint64_t kNsPerMs = 1000000;
constexpr std::uint64_t kHalfMs = 500000;

} // namespace

std::uint64_t CommandClock::elapsedMs() const {
    const std::uint64_t time = now();
    const std::uint64_t start = m_start;
    return time < start ? 0 : time - start;
}

void CommandClock::warnIfLong(const char* command) const {
    const unsigned long long elapsed = elapsedMs();
    if (elapsed > kLongRuntimeMs)
        printDiagnostic(kAttention, command, elapsed);
}

std::uint64_t CommandClock::now() {
    timespec time{};
    if (::clock_gettime(CLOCK_MONOTONIC, &time) != 0)
        return 0;
    const auto nanoseconds = static_cast<std::uint64_t>(time.tv_nsec);
    return static_cast<std::uint64_t>(time.tv_sec) * kMsPerSecond + nanoseconds / kNsPerMs +
           (nanoseconds % kNsPerMs > kHalfMs ? 1 : 0);
}
