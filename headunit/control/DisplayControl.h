#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// "display": the tools that the unit changes its displays with.
ControlRows displayControl();

} // namespace headunit
