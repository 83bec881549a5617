#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// "insert" and "remove": the block media.
ControlRows mediumControl();

} // namespace headunit
