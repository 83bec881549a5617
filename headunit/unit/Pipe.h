#pragma once

#include "wire/Descriptor.h"

namespace headunit {

/// A pipe that no program inherits. False and `errno` on failure, with both ends left as they were.
bool openPipe(System::Descriptor& readEnd, System::Descriptor& writeEnd);

} // namespace headunit
