#include "control/LineControl.h"

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr char kUnpluggedAlready[] = "%s is unplugged already";
constexpr char kPluggedAlready[] = "%s is plugged in already";

std::string unplug(UnitDevices& devices, const ControlArguments& arguments) {
    SerialLine& line = devices.lines.named(arguments[0]);
    if (!line.isPlugged())
        throw unitError(kUnpluggedAlready, arguments[0].c_str());
    line.unplug();
    return {};
}

std::string plug(UnitDevices& devices, const ControlArguments& arguments) {
    SerialLine& line = devices.lines.named(arguments[0]);
    if (line.isPlugged())
        throw unitError(kPluggedAlready, arguments[0].c_str());
    line.plug();
    return {};
}

} // namespace

ControlRows lineControl() {
    return {
        {"unplug", 1, 1, "LINE", unplug},
        {"plug", 1, 1, "LINE", plug},
    };
}

} // namespace headunit
