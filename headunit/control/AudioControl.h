#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// "audio": the audio driver.
ControlRows audioControl();

} // namespace headunit
