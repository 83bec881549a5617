#include "displays/Dmdt.h"

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr char kUsage[] = "usage: dmdt dc ID VALUE | dmdt sc DISPLAY ID";
constexpr std::size_t kWords = 3;

void define(DisplayState& state, int id, int value) {
    state.contents[id] = value;
    for (const auto& [display, content] : state.switched)
        if (content == id)
            state.stale.insert(display);
}

void switchTo(DisplayState& state, int display, int id) {
    if (state.contents.count(id) == 0)
        throw unitError("content %d is not defined", id);
    state.switched[display] = id;
    state.stale.insert(display);
}

} // namespace

void callDmdt(DisplayState& state, const ToolArguments& arguments) {
    if (arguments.size() != kWords)
        throw UnitError(kUsage);
    if (arguments[0] == "dc")
        return define(state, toolNumber(arguments[1]), toolNumber(arguments[2]));
    if (arguments[0] != "sc")
        throw UnitError(kUsage);
    switchTo(state, displayNumber(arguments[1]), toolNumber(arguments[2]));
}

} // namespace headunit
