#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// "i2c": the bus's manager and the chips on it.
ControlRows i2cControl();

} // namespace headunit
