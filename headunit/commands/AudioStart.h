#pragma once

#include <string>

namespace headunit {

/// The program of the unit's audio driver, beside headunit. Throws UnitError.
std::string audioDriverProgram();

/// Blocks until the driver is ready for signals; it stays in the background then. Throws UnitError when
/// it does not start.
void startAudioDriver(const std::string& program);

} // namespace headunit
