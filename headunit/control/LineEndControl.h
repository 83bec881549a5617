#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// What hangs at the far ends of the serial lines: "position", "modem", "loopback", "receiver".
ControlRows lineEndControl();

} // namespace headunit
