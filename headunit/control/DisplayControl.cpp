#include "control/DisplayControl.h"

#include "control/ControlWords.h"

namespace headunit {
namespace {

std::string orderFailures(UnitDevices& devices, const ControlArguments& arguments) {
    const Choice<DisplayTool> tools[] = {{nameOf(DisplayTool::viewer), DisplayTool::viewer},
                                         {nameOf(DisplayTool::manager), DisplayTool::manager}};
    const DisplayTool tool = chosen(tools, arguments[0]);
    devices.displays.orderFailures(tool, timesIn(arguments, "calls"));
    return {};
}

std::string setLate(UnitDevices& devices, const ControlArguments& arguments) {
    devices.displays.setLate(static_cast<int>(lateness(arguments[0]).count()));
    return {};
}

} // namespace

ControlRows displayControl() {
    const ControlRows keys = {
        {"fail", 1, 2, "showimage|dmdt [CALLS]", orderFailures},
        {"late", 1, 1, "MILLISECONDS", setLate},
    };
    return {{"display", 1, 3, "VALUE [VALUE]", nullptr, keys}};
}

} // namespace headunit
