#pragma once

namespace System {

/// How this system's `dlopen` is told to load a driver library.
int driverLibraryMode();

} // namespace System
