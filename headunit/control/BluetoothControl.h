#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// "bluetooth": the Bluetooth side of the wireless chip and its manager.
ControlRows bluetoothControl();

} // namespace headunit
