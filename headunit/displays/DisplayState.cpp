#include "displays/DisplayState.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace headunit {
namespace {

constexpr int kBlack = -9999;
constexpr std::pair<int, int> kVideoInputs[] = {{-125, 3}, {47, 0}, {48, 2}};

constexpr char kViewer[] = "viewer";
constexpr char kRunning[] = "running";
constexpr char kImage[] = "image";
constexpr char kLayer[] = "layer";
constexpr char kContent[] = "content";
constexpr char kDisplay[] = "display";
constexpr char kFail[] = "fail";
constexpr char kLate[] = "late";

/// The rest of the line behind one blank: a path may hold blanks itself.
std::string rest(std::istringstream& line) {
    std::string text;
    line.get();
    std::getline(line, text);
    return text;
}

void readFailures(std::istringstream& line, DisplayState& state) {
    std::string tool;
    unsigned calls = 0;
    if (!(line >> tool >> calls))
        return;
    for (const DisplayTool known : {DisplayTool::viewer, DisplayTool::manager})
        if (tool == nameOf(known))
            state.failures[known] = calls;
}

void readNumbers(const std::string& word, std::istringstream& line, DisplayState& state) {
    int first = 0;
    if (!(line >> first))
        return;
    if (word == kLate)
        state.late = first;
    if (word == kLayer)
        state.pictures[first] = rest(line);
    int second = 0;
    if ((word != kContent && word != kDisplay) || !(line >> second))
        return;
    (word == kContent ? state.contents : state.switched)[first] = second;
}

void readLine(const std::string& text, DisplayState& state) {
    std::istringstream line(text);
    std::string word;
    line >> word;
    if (word == kViewer)
        state.viewerRuns = rest(line) == kRunning;
    else if (word == kImage)
        state.selected = rest(line);
    else if (word == kFail)
        readFailures(line, state);
    else
        readNumbers(word, line, state);
}

} // namespace

std::string_view nameOf(DisplayTool tool) {
    return tool == DisplayTool::viewer ? "showimage" : "dmdt";
}

bool DisplayState::isDisplay(int number) {
    return std::find(kDisplays.begin(), kDisplays.end(), number) != kDisplays.end();
}

std::string textOf(const DisplayState& state) {
    std::ostringstream text;
    if (state.viewerRuns)
        text << kViewer << ' ' << kRunning << '\n';
    if (!state.selected.empty())
        text << kImage << ' ' << state.selected << '\n';
    for (const auto& [layer, path] : state.pictures)
        text << kLayer << ' ' << layer << ' ' << path << '\n';
    for (const auto& [id, value] : state.contents)
        text << kContent << ' ' << id << ' ' << value << '\n';
    for (const auto& [display, id] : state.switched)
        text << kDisplay << ' ' << display << ' ' << id << '\n';
    for (const auto& [tool, calls] : state.failures)
        if (calls > 0)
            text << kFail << ' ' << nameOf(tool) << ' ' << calls << '\n';
    if (state.late > 0)
        text << kLate << ' ' << state.late << '\n';
    return text.str();
}

DisplayState displayStateOf(const std::string& text) {
    DisplayState state;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        readLine(line, state);
    return state;
}

Shown shownOn(const DisplayState& state, int display) {
    if (const auto picture = state.pictures.find(display); picture != state.pictures.end())
        return {picture->second, std::nullopt};
    const auto switched = state.switched.find(display);
    if (switched == state.switched.end())
        return {};
    const auto content = state.contents.find(switched->second);
    if (content == state.contents.end() || content->second == kBlack)
        return {};
    return {"", content->second};
}

std::optional<int> videoInputOf(int source) {
    for (const auto& [known, input] : kVideoInputs)
        if (known == source)
            return input;
    return std::nullopt;
}

std::string describe(const Shown& shown) {
    if (!shown.picture.empty())
        return "picture " + shown.picture;
    if (!shown.source)
        return "black";
    if (const auto input = videoInputOf(*shown.source))
        return "input " + std::to_string(*input);
    return "source " + std::to_string(*shown.source);
}

} // namespace headunit
