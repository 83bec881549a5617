#include "control/ControlCommands.h"
#include "control/ControlWords.h"

namespace headunit {

ControlCommands::Answer ControlCommands::display(const Words& words) {
    static const std::vector<Key> kKeys = {
        {"fail", &ControlCommands::orderToolFailures, 1, 2, "display fail showimage|dmdt [CALLS]"},
        {"late", &ControlCommands::setToolsLate, 1, 1, "display late MILLISECONDS"},
    };
    return runKey(kKeys, words);
}

// These change the displays, if not this object.
// NOLINTBEGIN(readability-make-member-function-const)

ControlCommands::Answer ControlCommands::orderToolFailures(const Words& values) {
    for (const DisplayTool tool : {DisplayTool::viewer, DisplayTool::manager}) {
        if (values[0] != nameOf(tool))
            continue;
        const auto times = timesIn(values);
        if (!times)
            return refusedTimes(values[1], "calls");
        m_devices.displays.orderFailures(tool, *times);
        return {};
    }
    return refusedValue(values[0], "one of showimage, dmdt");
}

ControlCommands::Answer ControlCommands::setToolsLate(const Words& values) {
    const auto late = lateness(values[0]);
    if (!late)
        return refusedLateness(values[0]);
    m_devices.displays.setLate(static_cast<int>(late->count()));
    return {};
}

// NOLINTEND(readability-make-member-function-const)

} // namespace headunit
