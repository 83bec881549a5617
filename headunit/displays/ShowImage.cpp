#include "displays/ShowImage.h"

#include <algorithm>
#include <iterator>

#include "displays/Screen.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr char kUsage[] =
    "usage: showimage | showimage h LAYER | showimage si PICTURE | showimage s DISPLAY | showimage q";

void hideLayer(DisplayState& state, int layer) {
    if (state.pictures.erase(layer) != 0)
        state.stale.insert(layer);
}

void hide(DisplayState& state, const ToolArguments& arguments) {
    hideLayer(state, displayNumber(arguments[1]));
}

void select(DisplayState& state, const ToolArguments& arguments) {
    const std::string& path = arguments[1];
    if (path.find('\n') != std::string::npos)
        throw UnitError("a path with a line end cannot be selected");
    loadPicture(path);
    state.selected = path;
}

void show(DisplayState& state, const ToolArguments& arguments) {
    const int display = displayNumber(arguments[1]);
    if (state.selected.empty())
        throw UnitError("no picture is selected");
    state.pictures[display] = state.selected;
    state.stale.insert(display);
}

void quit(DisplayState& state, const ToolArguments& /*arguments*/) {
    for (const int layer : DisplayState::kDisplays)
        hideLayer(state, layer);
    state.selected.clear();
    state.viewerRuns = false;
}

struct Word {
    std::string_view word;
    std::size_t size; ///< of the arguments with this word
    void (*handler)(DisplayState& state, const ToolArguments& arguments);
};

constexpr Word kWords[] = {{"h", 2, hide}, {"si", 2, select}, {"s", 2, show}, {"q", 1, quit}};

} // namespace

void callShowImage(DisplayState& state, const ToolArguments& arguments) {
    if (arguments.empty()) {
        state.viewerRuns = true;
        return;
    }
    const auto* const word = std::find_if(std::begin(kWords), std::end(kWords), [&](const Word& known) {
        return known.word == arguments[0] && known.size == arguments.size();
    });
    if (word == std::end(kWords))
        throw UnitError(kUsage);
    if (!state.viewerRuns)
        throw UnitError("the viewer does not run");
    word->handler(state, arguments);
}

} // namespace headunit
