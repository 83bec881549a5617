#include "control/BluetoothControl.h"

#include "control/ControlWords.h"
#include "control/ManagerControl.h"

namespace headunit {
namespace {

using Call = BluetoothManager::Call;

constexpr char kNoPacket[] = "'%s' is not a packet in hexadecimal, its type first";
constexpr char kNotOpen[] = "nobody has the bluetooth chip open";
constexpr char kNotRead[] = "nobody reads what the bluetooth chip says";
constexpr Choice<Call> kCalls[] = {{"open", Call::open}, {"write", Call::write}, {"read", Call::read}};

std::string setSilent(UnitDevices& devices, const ControlArguments& arguments) {
    devices.bluetooth.chip().setSilent(onOrOff(arguments[0]));
    return {};
}

std::string orderFailures(UnitDevices& devices, const ControlArguments& arguments) {
    const Call call = chosen(kCalls, arguments[0]);
    devices.bluetooth.orderFailures(call, timesIn(arguments, "calls"));
    return {};
}

std::string sendPacket(UnitDevices& devices, const ControlArguments& arguments) {
    BluetoothManager& manager = devices.bluetooth;
    const auto packet = hexBytes(arguments[0]);
    if (!packet)
        throw unitError(kNoPacket, arguments[0].c_str());
    if (!manager.isOpen())
        throw UnitError(kNotOpen);
    if (!manager.chip().say(*packet))
        throw UnitError(kNotRead);
    manager.flush();
    return {};
}

} // namespace

ControlRows bluetoothControl() {
    const ControlRows keys = {
        {"manager", 1, 1, "on|off", setManager<&UnitDevices::bluetooth>},
        {"late", 1, 1, "MILLISECONDS", setManagerLate<&UnitDevices::bluetooth>},
        {"silent", 1, 1, "on|off", setSilent},
        {"fail", 1, 2, "open|write|read [CALLS]", orderFailures},
        {"send", 1, 1, "HEX", sendPacket},
    };
    return {{"bluetooth", 1, 3, "VALUE [VALUE]", nullptr, keys}};
}

} // namespace headunit
