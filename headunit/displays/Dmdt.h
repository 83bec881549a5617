#pragma once

#include "displays/DisplayState.h"
#include "displays/ToolWords.h"

namespace headunit {

/// What a call of 'dmdt', the display manager's tool, makes of the state. Throws UnitError, and leaves
/// the state as it was, when the words or what they name cannot be used. Any thread.
void callDmdt(DisplayState& state, const ToolArguments& arguments);

} // namespace headunit
