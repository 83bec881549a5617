#pragma once

#include <chrono>

#include "wire/Descriptor.h"

namespace System {

/// Waits for files to appear. Where the system can tell of new ones, the wait ends at once; it costs no
/// processor time in any case. Keeps what it needs for that from the beginning, so that a process that
/// has run out of descriptors still waits well. One thread at a time.
class PathWait {
public:
    PathWait();

    /// Whether something exists at `path`; waits up to `longest` for it.
    bool waitFor(const char* path, std::chrono::milliseconds longest);

private:
    Descriptor m_notifier;
};

} // namespace System
