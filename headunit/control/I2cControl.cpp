#include "control/ControlCommands.h"
#include "control/ControlWords.h"

namespace headunit {
namespace {

constexpr std::size_t kBytesOfLine = 16;

} // namespace

ControlCommands::Answer ControlCommands::i2c(const Words& words) {
    static const std::vector<Key> kKeys = {
        {"manager", &ControlCommands::setI2cManager, 1, 1, "i2c manager on|off"},
        {"late", &ControlCommands::setI2cLate, 1, 1, "i2c late MILLISECONDS"},
        {"result", &ControlCommands::orderI2cResult, 1, 2, "i2c result NUMBER [REQUESTS]"},
        {"chip", &ControlCommands::setChip, 2, 2, "i2c chip eeprom|sensor|expander on|off"},
        {"temperature", &ControlCommands::setTemperature, 1, 1, "i2c temperature DEGREES"},
        {"pins", &ControlCommands::setPins, 1, 1, "i2c pins HEX"},
        {"eeprom", &ControlCommands::eeprom, 0, 2, "i2c eeprom [ADDRESS HEX]"},
    };
    return runKey(kKeys, words);
}

ControlCommands::Answer ControlCommands::setI2cManager(const Words& values) {
    return setManager(m_devices.i2c.node(), values[0]);
}

ControlCommands::Answer ControlCommands::setI2cLate(const Words& values) {
    return setManagerLate(m_devices.i2c.node(), values[0]);
}

ControlCommands::Answer ControlCommands::orderI2cResult(const Words& values) {
    const auto result = wholeNumber(values[0]);
    if (!result)
        return refusedValue(values[0], kNoResult);
    const auto count = timesIn(values);
    if (!count)
        return refusedTimes(values[1], "requests");
    m_devices.i2c.bus().orderResult(*result, *count);
    return {};
}

ControlCommands::Answer ControlCommands::setChip(const Words& values) {
    I2cBus::Chip* chip = m_devices.i2c.bus().findChip(values[0]);
    if (chip == nullptr)
        return refusedValue(values[0], "one of eeprom, sensor, expander");
    const auto present = onOrOff(values[1]);
    if (!present)
        return refusedValue(values[1], "on or off");
    chip->present = *present;
    return {};
}

ControlCommands::Answer ControlCommands::setTemperature(const Words& values) {
    const auto degrees = decimalNumber(values[0]);
    if (!degrees || !m_devices.i2c.bus().sensor.setTemperature(*degrees))
        return refusedValue(values[0], "a temperature in degrees Celsius: -55 to 125");
    return {};
}

ControlCommands::Answer ControlCommands::setPins(const Words& values) {
    const auto levels = hexBytes(values[0]);
    if (!levels || levels->size() != 1)
        return refusedValue(values[0], "the levels of eight pins: 00 to FF");
    m_devices.i2c.bus().expander.setOutside(static_cast<std::uint8_t>(levels->front()));
    return {};
}

ControlCommands::Answer ControlCommands::eeprom(const Words& values) {
    Eeprom& memory = m_devices.i2c.bus().eeprom;
    if (values.size() == 1)
        return refused("usage: i2c eeprom [ADDRESS HEX]");
    if (!values.empty()) {
        const auto address = hexBytes(values[0]);
        const auto bytes = hexBytes(values[1]);
        if (!address || address->size() != 1 || !bytes ||
            !memory.store(static_cast<std::uint8_t>(address->front()), *bytes))
            return refusedValue(values[0] + " " + values[1],
                                "an address, 00 to FF, and bytes in hexadecimal that fit in after it");
        return {};
    }
    const std::string content = memory.content();
    std::string text;
    for (std::size_t at = 0; at < content.size(); ++at) {
        if (at % kBytesOfLine == 0)
            text += (at == 0 ? "" : "\n") + hexText(static_cast<std::uint8_t>(at)) + ":";
        text += " " + hexText(static_cast<std::uint8_t>(content[at]));
    }
    return {true, text};
}

} // namespace headunit
