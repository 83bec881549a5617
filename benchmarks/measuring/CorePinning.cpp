#include "measuring/CorePinning.h"

#include "measuring/Failure.h"

namespace Measuring {

namespace {

// The first core usually serves the interrupts.
int lastCoreOf(const cpu_set_t& cores) {
    int core = CPU_SETSIZE - 1;
    while (core > 0 && !CPU_ISSET(core, &cores))
        --core;
    return core;
}

} // namespace

const char* nameOf(Cores cores) {
    return cores == Cores::One ? "1 core" : "all cores";
}

CorePinning::CorePinning(Cores cores) {
    if (::sched_getaffinity(0, sizeof m_before, &m_before) != 0)
        throw failure("cannot read the cores");
    if (cores == Cores::All)
        return;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(lastCoreOf(m_before), &one);
    if (::sched_setaffinity(0, sizeof one, &one) != 0)
        throw failure("cannot stay on one core");
}

CorePinning::~CorePinning() {
    ::sched_setaffinity(0, sizeof m_before, &m_before);
}

} // namespace Measuring
