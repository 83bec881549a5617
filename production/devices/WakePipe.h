#pragma once

#include "wire/Descriptor.h"

/// Interrupts those who wait in `poll` for a device. Not synchronised, but for `descriptor`, which any
/// thread may wait for as long as it keeps the object alive.
///
/// Where there are no descriptors left it is inert: who waits has to look by himself from time to time.
class WakePipe {
public:
    /// Call it once, before anybody waits.
    void open();

    /// Readable (POLLIN) after `wake`, until somebody heeds it; hung up (POLLHUP) for good after `end`.
    /// -1, which `poll` passes over, when it is inert.
    int descriptor() const { return m_readEnd.get(); }
    bool isInert() const { return !m_readEnd; }

    void wake();
    void heed();
    void end() { m_writeEnd.reset(); }

private:
    System::Descriptor m_readEnd;
    System::Descriptor m_writeEnd;
    bool m_isAwake = false; // one byte is in the pipe, never more: writing cannot wait
};
