#include "control/WlanControl.h"

#include <limits>

#include "control/ControlWords.h"
#include "control/ManagerControl.h"

namespace headunit {
namespace {

constexpr char kNoSixteenBits[] = "'%s' is not a number of 16 bits: 0 to 65535";
constexpr char kCommands[] = "commands";

std::uint16_t sixteenBits(const std::string& text) {
    const auto number = wholeNumber(text);
    if (!number || *number < 0 || *number > std::numeric_limits<std::uint16_t>::max())
        throw unitError(kNoSixteenBits, text.c_str());
    return static_cast<std::uint16_t>(*number);
}

std::string orderResult(UnitDevices& devices, const ControlArguments& arguments) {
    const int result = managerResult(arguments[0]);
    devices.wlan.chip().orderResult(result, timesIn(arguments, "requests"));
    return {};
}

std::string orderRefusal(UnitDevices& devices, const ControlArguments& arguments) {
    const std::uint16_t result = sixteenBits(arguments[0]);
    devices.wlan.chip().orderRefusal(result, timesIn(arguments, kCommands));
    return {};
}

std::string orderSize(UnitDevices& devices, const ControlArguments& arguments) {
    const std::uint16_t size = sixteenBits(arguments[0]);
    devices.wlan.chip().orderSize(size, timesIn(arguments, kCommands));
    return {};
}

} // namespace

ControlRows wlanControl() {
    const ControlRows keys = {
        {"manager", 1, 1, "on|off", setManager<&UnitDevices::wlan>},
        {"late", 1, 1, "MILLISECONDS", setManagerLate<&UnitDevices::wlan>},
        {"result", 1, 2, "NUMBER [REQUESTS]", orderResult},
        {"refuse", 1, 2, "RESULT [COMMANDS]", orderRefusal},
        {"size", 1, 2, "BYTES [COMMANDS]", orderSize},
    };
    return {{"wlan", 1, 3, "VALUE [VALUE]", nullptr, keys}};
}

} // namespace headunit
