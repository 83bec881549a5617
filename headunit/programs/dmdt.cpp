// dmdt: the unit's display-manager tool. "dc ID VALUE" defines a content, "sc DISPLAY ID" switches a
// display to it.
#include <iostream>

#include "displays/ToolCall.h"

int main(int argc, char** argv) {
    return headunit::runTool(headunit::DisplayFiles(headunit::DisplayFiles::kFolder),
                             headunit::DisplayTool::manager, {argv + 1, argv + argc}, std::cerr);
}
