#pragma once

#include "wire/Descriptor.h"

namespace System {

/// Takes what a call of the system has opened (or -1) and keeps it from what an `exec` starts. Here that
/// takes a second step: a program that another thread starts in between, by other means than `spawn`
/// with a descriptor map, inherits the descriptor. Empty and errno on failure.
Descriptor closeOnExec(int descriptor);

} // namespace System
