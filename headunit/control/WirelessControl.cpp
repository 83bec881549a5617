#include <limits>
#include <utility>

#include "control/ControlCommands.h"
#include "control/ControlWords.h"

namespace headunit {
namespace {

constexpr char kNoSixteenBits[] = "a number of 16 bits: 0 to 65535";

std::optional<std::uint16_t> sixteenBits(const std::string& text) {
    const auto number = wholeNumber(text);
    if (!number || *number < 0 || *number > std::numeric_limits<std::uint16_t>::max())
        return std::nullopt;
    return static_cast<std::uint16_t>(*number);
}

std::optional<BluetoothManager::Call> callNamed(const std::string& text) {
    using Call = BluetoothManager::Call;
    constexpr std::pair<std::string_view, Call> kCalls[] = {
        {"open", Call::open}, {"write", Call::write}, {"read", Call::read}};
    for (const auto& [name, call] : kCalls)
        if (name == text)
            return call;
    return std::nullopt;
}

} // namespace

ControlCommands::Answer ControlCommands::wlan(const Words& words) {
    static const std::vector<Key> kKeys = {
        {"manager", &ControlCommands::setWlanManager, 1, 1, "wlan manager on|off"},
        {"late", &ControlCommands::setWlanLate, 1, 1, "wlan late MILLISECONDS"},
        {"result", &ControlCommands::orderWlanResult, 1, 2, "wlan result NUMBER [REQUESTS]"},
        {"refuse", &ControlCommands::orderWlanRefusal, 1, 2, "wlan refuse RESULT [COMMANDS]"},
        {"size", &ControlCommands::orderWlanSize, 1, 2, "wlan size BYTES [COMMANDS]"},
    };
    return runKey(kKeys, words);
}

ControlCommands::Answer ControlCommands::setWlanManager(const Words& values) {
    return setManager(m_devices.wlan.node(), values[0]);
}

ControlCommands::Answer ControlCommands::setWlanLate(const Words& values) {
    return setManagerLate(m_devices.wlan.node(), values[0]);
}

ControlCommands::Answer ControlCommands::orderWlanResult(const Words& values) {
    const auto result = wholeNumber(values[0]);
    if (!result)
        return refusedValue(values[0], kNoResult);
    const auto times = timesIn(values);
    if (!times)
        return refusedTimes(values[1], "requests");
    m_devices.wlan.chip().orderResult(*result, *times);
    return {};
}

ControlCommands::Answer ControlCommands::orderWlanRefusal(const Words& values) {
    const auto result = sixteenBits(values[0]);
    if (!result)
        return refusedValue(values[0], kNoSixteenBits);
    const auto times = timesIn(values);
    if (!times)
        return refusedTimes(values[1], "commands");
    m_devices.wlan.chip().orderRefusal(*result, *times);
    return {};
}

ControlCommands::Answer ControlCommands::orderWlanSize(const Words& values) {
    const auto size = sixteenBits(values[0]);
    if (!size)
        return refusedValue(values[0], kNoSixteenBits);
    const auto times = timesIn(values);
    if (!times)
        return refusedTimes(values[1], "commands");
    m_devices.wlan.chip().orderSize(*size, *times);
    return {};
}

ControlCommands::Answer ControlCommands::bluetooth(const Words& words) {
    static const std::vector<Key> kKeys = {
        {"manager", &ControlCommands::setBluetoothManager, 1, 1, "bluetooth manager on|off"},
        {"late", &ControlCommands::setBluetoothLate, 1, 1, "bluetooth late MILLISECONDS"},
        {"silent", &ControlCommands::setBluetoothSilent, 1, 1, "bluetooth silent on|off"},
        {"fail", &ControlCommands::orderBluetoothFailures, 1, 2,
         "bluetooth fail open|write|read [CALLS]"},
        {"send", &ControlCommands::sendFromBluetooth, 1, 1, "bluetooth send HEX"},
    };
    return runKey(kKeys, words);
}

ControlCommands::Answer ControlCommands::setBluetoothManager(const Words& values) {
    return setManager(m_devices.bluetooth.node(), values[0]);
}

ControlCommands::Answer ControlCommands::setBluetoothLate(const Words& values) {
    return setManagerLate(m_devices.bluetooth.node(), values[0]);
}

ControlCommands::Answer ControlCommands::setBluetoothSilent(const Words& values) {
    const auto silent = onOrOff(values[0]);
    if (!silent)
        return refusedValue(values[0], "on or off");
    m_devices.bluetooth.chip().setSilent(*silent);
    return {};
}

ControlCommands::Answer ControlCommands::orderBluetoothFailures(const Words& values) {
    const auto call = callNamed(values[0]);
    if (!call)
        return refusedValue(values[0], "one of open, write, read");
    const auto times = timesIn(values);
    if (!times)
        return refusedTimes(values[1], "calls");
    m_devices.bluetooth.orderFailures(*call, *times);
    return {};
}

ControlCommands::Answer ControlCommands::sendFromBluetooth(const Words& values) {
    BluetoothManager& manager = m_devices.bluetooth;
    const auto packet = hexBytes(values[0]);
    if (!packet)
        return refusedValue(values[0], "a packet in hexadecimal, its type first");
    if (!manager.isOpen())
        return refused("nobody has the bluetooth chip open");
    if (!manager.chip().say(*packet))
        return refused("nobody reads what the bluetooth chip says");
    manager.flush();
    return {};
}

} // namespace headunit
