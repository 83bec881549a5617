#include <cstdint>
#include <iomanip>
#include <sstream>

#include "control/ControlCommands.h"
#include "control/ControlWords.h"

namespace headunit {
namespace {

const char* isOn(const ManagerNode& node) {
    return node.isThere() ? " on " : " off ";
}

/// "02:00:00:00:87:01".
std::string addressText(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes)
        text.append(text.empty() ? "" : ":").append(hexText(static_cast<std::uint8_t>(byte)));
    return text;
}

} // namespace

ControlCommands::Answer ControlCommands::state(const Words& /*words*/) {
    std::ostringstream text;
    for (const SerialLine* line : m_lines.all())
        text << line->name() << ' ' << line->unitPath() << ' '
             << (line->isPlugged() ? "plugged" : "unplugged") << " from-unit " << line->bytesFromUnit()
             << " to-unit " << line->bytesToUnit() << '\n';
    text << describeManagers();
    for (const BlockMedium& medium : m_devices.media.all())
        text << medium.name() << ' ' << medium.unitPath()
             << (medium.isInserted() ? " inserted" : " removed") << '\n';
    text << describeDisplays() << "audio " << AudioDriver::kProcess << ' '
         << nameOf(m_devices.audio.state());
    return {true, text.str()};
}

std::string ControlCommands::describeManagers() {
    std::ostringstream text;
    I2cBus& bus = m_devices.i2c.bus();
    text << "i2c " << I2cManager::kNode << isOn(m_devices.i2c.node()) << "speed " << bus.speed()
         << (bus.isHeld() ? " held" : " free") << " requests " << bus.requests() << " refused "
         << bus.refused() << '\n';
    for (const I2cBus::Chip& chip : bus.chips())
        text << chip.name << " 0x" << hexText(static_cast<std::uint8_t>(chip.address))
             << (chip.present ? " on " : " off ") << chip.slave.description() << '\n';
    const WlanChip& wlan = m_devices.wlan.chip();
    text << "wlan " << WlanManager::kNode << isOn(m_devices.wlan.node()) << "address "
         << addressText(wlan.address()) << " requests " << wlan.requests() << " refused "
         << wlan.refused() << '\n';
    BluetoothManager& manager = m_devices.bluetooth;
    text << "bluetooth " << BluetoothRequests::kNode << isOn(manager.node())
         << (manager.isOpen() ? "open" : "closed") << " address "
         << addressText(BluetoothChip::address()) << " commands " << manager.chip().commands()
         << " unsaid " << manager.chip().unsaid() << '\n';
    return text.str();
}

std::string ControlCommands::describeDisplays() const {
    const DisplayState state = m_devices.displays.state();
    std::string text = std::string("viewer ") + (state.viewerRuns ? "running" : "stopped") + '\n';
    for (const int display : DisplayState::kDisplays)
        text += "display " + std::to_string(display) + ' ' + describe(shownOn(state, display)) + '\n';
    return text;
}

} // namespace headunit
