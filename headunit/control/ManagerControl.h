#pragma once

#include "control/ControlWords.h"

namespace headunit {

/// "manager on|off": whether a device manager is there. `member` is the device that has one.
template <auto member>
std::string setManager(UnitDevices& devices, const ControlArguments& arguments) {
    ManagerNode& node = (devices.*member).node();
    if (onOrOff(arguments[0]))
        node.comeBack();
    else
        node.goAway();
    return {};
}

/// "late MILLISECONDS": how late it answers.
template <auto member>
std::string setManagerLate(UnitDevices& devices, const ControlArguments& arguments) {
    (devices.*member).node().setLate(lateness(arguments[0]));
    return {};
}

} // namespace headunit
