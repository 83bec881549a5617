#include "control/LineEndControl.h"

#include "control/ControlWords.h"
#include "control/ModemControl.h"

namespace headunit {
namespace {

constexpr char kNoPlace[] = "'%s %s' is not a latitude within 90 and a longitude within 180 degrees";

std::string setPosition(UnitDevices& devices, const ControlArguments& arguments) {
    const auto latitude = decimalNumber(arguments[0]);
    const auto longitude = decimalNumber(arguments[1]);
    if (!latitude || !longitude || !isOnEarth({*latitude, *longitude}))
        throw unitError(kNoPlace, arguments[0].c_str(), arguments[1].c_str());
    devices.lines.receiver.setPosition({*latitude, *longitude});
    return {};
}

std::string setLoopback(UnitDevices& devices, const ControlArguments& arguments) {
    devices.lines.loopback.setConnected(onOrOff(arguments[0]));
    return {};
}

std::string setReceiver(UnitDevices& devices, const ControlArguments& arguments) {
    devices.lines.receiver.setOn(onOrOff(arguments[0]));
    return {};
}

} // namespace

ControlRows lineEndControl() {
    return {
        {"position", 2, 2, "LATITUDE LONGITUDE", setPosition},
        modemControl(),
        {"loopback", 1, 1, "on|off", setLoopback},
        {"receiver", 1, 1, "on|off", setReceiver},
    };
}

} // namespace headunit
