#include <algorithm>
#include <chrono>
#include <iterator>

#include "control/ControlCommands.h"
#include "control/ControlWords.h"

namespace headunit {

struct ControlCommands::I2cKey {
    std::string_view key;
    Answer (ControlCommands::*handler)(const Words& values);
    std::size_t leastValues;
    std::size_t mostValues;
    const char* usage;
};

namespace {

constexpr int kLongestLate = 600000; // milliseconds
constexpr int kMostOrdered = 1000000;
constexpr std::size_t kBytesOfLine = 16;

} // namespace

const ControlCommands::I2cKey ControlCommands::kI2cKeys[] = {
    {"manager", &ControlCommands::setI2cManager, 1, 1, "i2c manager on|off"},
    {"late", &ControlCommands::setI2cLate, 1, 1, "i2c late MILLISECONDS"},
    {"result", &ControlCommands::orderI2cResult, 1, 2, "i2c result NUMBER [REQUESTS]"},
    {"chip", &ControlCommands::setChip, 2, 2, "i2c chip eeprom|sensor|expander on|off"},
    {"temperature", &ControlCommands::setTemperature, 1, 1, "i2c temperature DEGREES"},
    {"pins", &ControlCommands::setPins, 1, 1, "i2c pins HEX"},
    {"eeprom", &ControlCommands::eeprom, 0, 2, "i2c eeprom [ADDRESS HEX]"},
};

ControlCommands::Answer ControlCommands::i2c(const Words& words) {
    const auto* const key = std::find_if(std::begin(kI2cKeys), std::end(kI2cKeys),
                                         [&](const I2cKey& known) { return known.key == words[0]; });
    if (key == std::end(kI2cKeys))
        return refusedValue(words[0], "one of manager, late, result, chip, temperature, pins, eeprom");
    const Words values(words.begin() + 1, words.end());
    if (values.size() < key->leastValues || values.size() > key->mostValues)
        return refused(std::string("usage: ") + key->usage);
    return (this->*key->handler)(values);
}

ControlCommands::Answer ControlCommands::setI2cManager(const Words& values) {
    const auto on = onOrOff(values[0]);
    if (!on)
        return refusedValue(values[0], "on or off");
    if (*on)
        m_devices.i2c.comeBack();
    else
        m_devices.i2c.goAway();
    return {};
}

ControlCommands::Answer ControlCommands::setI2cLate(const Words& values) {
    const auto late = wholeNumber(values[0]);
    if (!late || *late < 0 || *late > kLongestLate)
        return refusedValue(values[0], "a number of milliseconds: 0 to " + std::to_string(kLongestLate));
    m_devices.i2c.setLate(std::chrono::milliseconds(*late));
    return {};
}

ControlCommands::Answer ControlCommands::orderI2cResult(const Words& values) {
    const auto result = wholeNumber(values[0]);
    if (!result)
        return refusedValue(values[0], "a result: a whole number of 32 bits");
    const auto count = values.size() > 1 ? wholeNumber(values[1]) : 1;
    if (!count || *count < 0 || *count > kMostOrdered)
        return refusedValue(values[1], "a number of requests: 0 to " + std::to_string(kMostOrdered));
    m_devices.i2c.bus().orderResult(*result, static_cast<unsigned>(*count));
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
