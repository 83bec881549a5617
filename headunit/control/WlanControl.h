#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// "wlan": the network side of the wireless chip and its manager.
ControlRows wlanControl();

} // namespace headunit
