#pragma once

#include <cstdint>

namespace System {

/// How many bytes the system can still hand out before it has to take memory from running programs;
/// UINT64_MAX when the system cannot tell. Any thread; costs some microseconds.
std::uint64_t availableMemory();

/// Has the allocator give a large block back to the system as soon as it is freed, and keep little else,
/// also of a thread that asks for none any more. At the start of the process. Does nothing where the
/// allocator cannot do that.
void keepLittleFreedMemory();

/// Gives memory back to the system that the program has freed but its allocator has kept. Any thread;
/// costs milliseconds where there is much of it. Does nothing where the allocator cannot do that.
void returnFreedMemory();

} // namespace System
