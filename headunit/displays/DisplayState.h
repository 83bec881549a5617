#pragma once

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace headunit {

/// The two tools that the unit's displays are driven with.
enum class DisplayTool {
    viewer, ///< showimage: puts a picture on the layer that lies over a display
    manager ///< dmdt: decides what a display shows below that layer
};

/// "showimage", "dmdt".
std::string_view nameOf(DisplayTool tool);

/// What the unit's displays show and why, with the orders
/// that its tools have got. Plain data; not synchronised.
struct DisplayState {
    /// The numbers of the unit's displays; the layer over each has the same number.
    static constexpr std::array<int, 2> kDisplays = {0, 4};

    static bool isDisplay(int number);

    bool viewerRuns = false;
    std::string selected;                ///< the picture that the viewer shows next; empty for none
    std::map<int, std::string> pictures; ///< on the layers that are not hidden
    std::map<int, int> contents;         ///< the defined contents and what each stands for
    std::map<int, int> switched;         ///< the content that a display was switched to

    std::map<DisplayTool, unsigned> failures; ///< calls that are to fail
    int late = 0;                             ///< milliseconds that a call takes longer

    std::set<int> stale; ///< displays that show something else now; no part of the text
};

/// One fact a line: "viewer running", "image PATH", "layer DISPLAY PATH", "content ID VALUE",
/// "display DISPLAY ID", "fail TOOL CALLS", "late MILLISECONDS".
std::string textOf(const DisplayState& state);

/// The state of such a text. Lines that are none are
/// passed over, and what no line says is as at the start.
DisplayState displayStateOf(const std::string& text);

/// What a person sees on a display.
struct Shown {
    std::string picture;       ///< the path of its file, empty for none
    std::optional<int> source; ///< without a picture: a routed source; neither of them is black
};

Shown shownOn(const DisplayState& state, int display);

/// The video input that is known by this source: 0, 2 or 3.
std::optional<int> videoInputOf(int source);

/// "black", "picture PATH", "input N" or "source N".
std::string describe(const Shown& shown);

} // namespace headunit
