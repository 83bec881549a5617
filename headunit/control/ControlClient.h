#pragma once

#include <optional>
#include <string>

#include "control/ControlAnswer.h"

namespace headunit {

/// Sends one line to the unit whose control socket lies in `folder` and blocks until it has answered.
/// Nothing when no unit listens there. Throws UnitError when it goes away without an answer.
std::optional<ControlAnswer> askUnit(const std::string& folder, const std::string& line);

} // namespace headunit
