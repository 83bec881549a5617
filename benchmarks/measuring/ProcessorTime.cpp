#include "measuring/ProcessorTime.h"

#include <ctime>

#include "measuring/Failure.h"

namespace Measuring {

double processorTimeOf(pid_t pid) {
    constexpr double kMicrosecondsPerSecond = 1e6;
    constexpr double kNanosecondsPerMicrosecond = 1e3;
    clockid_t clock{};
    // Tells the error by its result.
    errno = ::clock_getcpuclockid(pid, &clock);
    timespec time{};
    if (errno != 0 || ::clock_gettime(clock, &time) != 0)
        throw failure("cannot read the processor time of a process");
    return static_cast<double>(time.tv_sec) * kMicrosecondsPerSecond +
           static_cast<double>(time.tv_nsec) / kNanosecondsPerMicrosecond;
}

} // namespace Measuring
