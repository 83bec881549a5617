#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// "modem": the telephone module.
ControlRow modemControl();

} // namespace headunit
