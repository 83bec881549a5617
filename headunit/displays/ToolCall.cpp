#include "displays/ToolCall.h"

#include <chrono>
#include <ostream>
#include <thread>

#include "displays/Dmdt.h"
#include "displays/ShowImage.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;

/// Whether this call was to fail; then one fewer is.
bool takesFailure(DisplayState& state, DisplayTool tool) {
    unsigned& left = state.failures[tool];
    if (left == 0)
        return false;
    --left;
    return true;
}

} // namespace

void callTool(DisplayState& state, DisplayTool tool, const ToolArguments& arguments) {
    if (tool == DisplayTool::viewer)
        return callShowImage(state, arguments);
    callDmdt(state, arguments);
}

int runTool(const DisplayFiles& files, DisplayTool tool, const ToolArguments& arguments,
            std::ostream& errors) {
    try {
        std::this_thread::sleep_for(std::chrono::milliseconds(files.load().late));
        const System::Descriptor lock = files.lock();
        DisplayState state = files.load();
        if (takesFailure(state, tool)) {
            files.save(state);
            throw UnitError("it was told to fail");
        }
        callTool(state, tool, arguments);
        files.draw(state);
        files.save(state);
        return kDone;
    } catch (const UnitError& error) {
        errors << nameOf(tool) << ": " << error.what() << '\n';
        return kFailed;
    }
}

} // namespace headunit
