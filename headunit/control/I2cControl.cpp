#include "control/I2cControl.h"

#include "control/ControlWords.h"
#include "control/ManagerControl.h"
#include "unit/FormatText.h"

namespace headunit {
namespace {

constexpr char kNoTemperature[] = "'%s' is not a temperature in degrees Celsius: -55 to 125";
constexpr char kNoLevels[] = "'%s' is not the levels of eight pins: 00 to FF";
constexpr char kNoMemory[] =
    "'%s %s' is not an address, 00 to FF, and bytes in hexadecimal that fit in after it";
constexpr char kEepromUsage[] = "usage: i2c eeprom [ADDRESS HEX]";

constexpr std::size_t kBytesOfLine = 16;

std::string orderResult(UnitDevices& devices, const ControlArguments& arguments) {
    const int result = managerResult(arguments[0]);
    devices.i2c.bus().orderResult(result, timesIn(arguments, "requests"));
    return {};
}

std::string setChip(UnitDevices& devices, const ControlArguments& arguments) {
    I2cBus& bus = devices.i2c.bus();
    I2cBus::Chip* chip = bus.findChip(arguments[0]);
    if (chip == nullptr) {
        std::vector<std::string_view> names;
        for (const I2cBus::Chip& known : bus.chips())
            names.push_back(known.name);
        throw notOneOf(names, arguments[0]);
    }
    chip->present = onOrOff(arguments[1]);
    return {};
}

std::string setTemperature(UnitDevices& devices, const ControlArguments& arguments) {
    const auto degrees = decimalNumber(arguments[0]);
    if (!degrees || !devices.i2c.bus().sensor.setTemperature(*degrees))
        throw unitError(kNoTemperature, arguments[0].c_str());
    return {};
}

std::string setPins(UnitDevices& devices, const ControlArguments& arguments) {
    const auto levels = hexBytes(arguments[0]);
    if (!levels || levels->size() != 1)
        throw unitError(kNoLevels, arguments[0].c_str());
    devices.i2c.bus().expander.setOutside(static_cast<std::uint8_t>(levels->front()));
    return {};
}

std::string dump(const std::string& content) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < content.size(); ++at) {
        if (at % kBytesOfLine == 0)
            lines.push_back(formatText("%02zX:", at));
        lines.back() += formatText(" %02X", static_cast<unsigned char>(content[at]));
    }
    return listed(lines, "\n");
}

void store(Eeprom& memory, const std::string& place, const std::string& content) {
    const auto address = hexBytes(place);
    const auto bytes = hexBytes(content);
    if (!address || address->size() != 1 || !bytes ||
        !memory.store(static_cast<std::uint8_t>(address->front()), *bytes))
        throw unitError(kNoMemory, place.c_str(), content.c_str());
}

std::string showOrStore(UnitDevices& devices, const ControlArguments& arguments) {
    Eeprom& memory = devices.i2c.bus().eeprom;
    if (arguments.empty())
        return dump(memory.content());
    if (arguments.size() == 1)
        throw UnitError(kEepromUsage);
    store(memory, arguments[0], arguments[1]);
    return {};
}

} // namespace

ControlRows i2cControl() {
    const ControlRows keys = {
        {"manager", 1, 1, "on|off", setManager<&UnitDevices::i2c>},
        {"late", 1, 1, "MILLISECONDS", setManagerLate<&UnitDevices::i2c>},
        {"result", 1, 2, "NUMBER [REQUESTS]", orderResult},
        {"chip", 2, 2, "eeprom|sensor|expander on|off", setChip},
        {"temperature", 1, 1, "DEGREES", setTemperature},
        {"pins", 1, 1, "HEX", setPins},
        {"eeprom", 0, 2, "[ADDRESS HEX]", showOrStore},
    };
    return {{"i2c", 1, 3, "VALUE [VALUE]", nullptr, keys}};
}

} // namespace headunit
