#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// "state": a line for each device.
ControlRows stateReport();

} // namespace headunit
