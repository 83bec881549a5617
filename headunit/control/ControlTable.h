#pragma once

#include "control/ControlRow.h"

namespace headunit {

/// All that a user can ask of a unit, in the order in which the user is shown it. Any thread.
const ControlRows& controlTable();

/// What 'headunit control --help' tells of the words. Any thread.
std::string controlHelp();

} // namespace headunit
