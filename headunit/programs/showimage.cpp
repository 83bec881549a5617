// showimage: the unit's picture viewer. Without an argument it starts the viewer and comes back at once;
// "h LAYER" hides a layer, "si PICTURE" selects a picture, "s DISPLAY" shows it, "q" ends the viewer.
#include <iostream>

#include "displays/ToolCall.h"

int main(int argc, char** argv) {
    return headunit::runTool(headunit::DisplayFiles(headunit::DisplayFiles::kFolder),
                             headunit::DisplayTool::viewer, {argv + 1, argv + argc}, std::cerr);
}
