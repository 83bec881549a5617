#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// "unplug" and "plug": the serial lines of the unit.
ControlRows lineControl();

} // namespace headunit
