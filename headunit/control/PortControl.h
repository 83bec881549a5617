#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// "ports" and "port": the general-purpose lines.
ControlRows portControl();

} // namespace headunit
