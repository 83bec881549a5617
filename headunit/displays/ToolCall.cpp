#include "displays/ToolCall.h"

#include <charconv>
#include <chrono>
#include <ostream>
#include <thread>

#include "displays/Screen.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

using Arguments = std::vector<std::string>;

constexpr int kDone = 0;
constexpr int kFailed = 1;

constexpr char kViewerUsage[] =
    "usage: showimage | showimage h LAYER | showimage si PICTURE | showimage s DISPLAY | showimage q";
constexpr char kManagerUsage[] = "usage: dmdt dc ID VALUE | dmdt sc DISPLAY ID";

int number(const std::string& text) {
    int result = 0;
    const auto [stopped, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error != std::errc() || stopped != text.data() + text.size())
        throw UnitError("'" + text + "' is not a number");
    return result;
}

int displayNumber(const std::string& text) {
    const int display = number(text);
    if (!DisplayState::isDisplay(display))
        throw UnitError("there is no display " + text + ", only 0 and 4");
    return display;
}

void hide(DisplayState& state, int layer) {
    if (state.pictures.erase(layer) != 0)
        state.stale.insert(layer);
}

void select(DisplayState& state, const std::string& path) {
    if (path.find('\n') != std::string::npos)
        throw UnitError("a path with a line end cannot be selected");
    loadPicture(path);
    state.selected = path;
}

void show(DisplayState& state, int display) {
    if (state.selected.empty())
        throw UnitError("no picture is selected");
    state.pictures[display] = state.selected;
    state.stale.insert(display);
}

void quit(DisplayState& state) {
    for (const int layer : DisplayState::kDisplays)
        hide(state, layer);
    state.selected.clear();
    state.viewerRuns = false;
}

void callViewer(DisplayState& state, const Arguments& arguments) {
    if (arguments.empty()) {
        state.viewerRuns = true;
        return;
    }
    const std::string& word = arguments.front();
    const bool known = word == "q" || word == "h" || word == "si" || word == "s";
    const std::size_t expected = word == "q" ? 1 : 2;
    if (!known || arguments.size() != expected)
        throw UnitError(kViewerUsage);
    if (!state.viewerRuns)
        throw UnitError("the viewer does not run");
    if (word == "q")
        return quit(state);
    if (word == "si")
        return select(state, arguments[1]);
    const int display = displayNumber(arguments[1]);
    if (word == "h")
        return hide(state, display);
    show(state, display);
}

void define(DisplayState& state, int id, int value) {
    state.contents[id] = value;
    for (const auto& [display, content] : state.switched)
        if (content == id)
            state.stale.insert(display);
}

void switchTo(DisplayState& state, int display, int id) {
    if (state.contents.count(id) == 0)
        throw UnitError("content " + std::to_string(id) + " is not defined");
    state.switched[display] = id;
    state.stale.insert(display);
}

void callManager(DisplayState& state, const Arguments& arguments) {
    constexpr std::size_t kWords = 3;
    if (arguments.size() != kWords)
        throw UnitError(kManagerUsage);
    if (arguments[0] == "dc")
        return define(state, number(arguments[1]), number(arguments[2]));
    if (arguments[0] != "sc")
        throw UnitError(kManagerUsage);
    switchTo(state, displayNumber(arguments[1]), number(arguments[2]));
}

/// Whether this call was to fail; then one fewer is.
bool takesFailure(DisplayState& state, DisplayTool tool) {
    unsigned& left = state.failures[tool];
    if (left == 0)
        return false;
    --left;
    return true;
}

} // namespace

void callTool(DisplayState& state, DisplayTool tool, const std::vector<std::string>& arguments) {
    if (tool == DisplayTool::viewer)
        return callViewer(state, arguments);
    callManager(state, arguments);
}

int runTool(const DisplayFiles& files, DisplayTool tool, const std::vector<std::string>& arguments,
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
