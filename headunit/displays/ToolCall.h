#pragma once

#include <iosfwd>

#include "displays/DisplayFiles.h"
#include "displays/DisplayState.h"
#include "displays/ToolWords.h"

namespace headunit {

/// One call of a display tool with these arguments, carried out on the state. Throws UnitError that says
/// why it cannot be done; then the state is as it was.
void callTool(DisplayState& state, DisplayTool tool, const ToolArguments& arguments);

/// The whole program: waits as long as it was told to be late, carries the call out on the unit's
/// displays, and draws what they show then. Returns its exit status: 0, or 1 after one line on `errors`,
/// with everything as it was before.
int runTool(const DisplayFiles& files, DisplayTool tool, const ToolArguments& arguments,
            std::ostream& errors);

} // namespace headunit
