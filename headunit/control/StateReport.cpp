#include "control/StateReport.h"

#include <cinttypes>

#include "unit/FormatText.h"
#include "unit/NameList.h"

namespace headunit {
namespace {

// The names here are literals, whose views end where a string does.
using Lines = std::vector<std::string>;

const char* onOff(bool on) {
    return on ? "on" : "off";
}

/// "02:00:00:00:87:01".
std::string addressText(const std::string& bytes) {
    Lines numbers;
    for (const char byte : bytes)
        numbers.push_back(formatText("%02X", static_cast<unsigned char>(byte)));
    return listed(numbers, ":");
}

void tellLines(SerialLines& all, Lines& report) {
    for (const SerialLine* line : all.all())
        report.push_back(formatText("%s %s %s from-unit %" PRIu64 " to-unit %" PRIu64,
                                    line->name().data(), line->unitPath().data(),
                                    line->isPlugged() ? "plugged" : "unplugged", line->bytesFromUnit(),
                                    line->bytesToUnit()));
}

void tellI2c(I2cManager& manager, Lines& report) {
    I2cBus& bus = manager.bus();
    report.push_back(formatText("i2c %s %s speed %" PRIu32 " %s requests %" PRIu64 " refused %" PRIu64,
                                I2cManager::kNode, onOff(manager.node().isThere()), bus.speed(),
                                bus.isHeld() ? "held" : "free", bus.requests(), bus.refused()));
    for (const I2cBus::Chip& chip : bus.chips())
        report.push_back(formatText("%s 0x%02" PRIX32 " %s %s", chip.name.data(), chip.address,
                                    onOff(chip.present), chip.slave.description().c_str()));
}

void tellWlan(WlanManager& manager, Lines& report) {
    const WlanChip& chip = manager.chip();
    report.push_back(formatText("wlan %s %s address %s requests %" PRIu64 " refused %" PRIu64,
                                WlanManager::kNode, onOff(manager.node().isThere()),
                                addressText(chip.address()).c_str(), chip.requests(), chip.refused()));
}

void tellBluetooth(BluetoothManager& manager, Lines& report) {
    const BluetoothChip& chip = manager.chip();
    report.push_back(formatText(
        "bluetooth %s %s %s address %s commands %" PRIu64 " unsaid %zu", BluetoothRequests::kNode,
        onOff(manager.node().isThere()), manager.isOpen() ? "open" : "closed",
        addressText(BluetoothChip::address()).c_str(), chip.commands(), chip.unsaid()));
}

void tellMedia(BlockMedia& media, Lines& report) {
    for (const BlockMedium& medium : media.all())
        report.push_back(formatText("%s %s %s", medium.name().data(), medium.unitPath().data(),
                                    medium.isInserted() ? "inserted" : "removed"));
}

void tellDisplays(const Displays& displays, Lines& report) {
    const DisplayState state = displays.state();
    report.push_back(formatText("viewer %s", state.viewerRuns ? "running" : "stopped"));
    for (const int display : DisplayState::kDisplays)
        report.push_back(
            formatText("display %d %s", display, describe(shownOn(state, display)).c_str()));
}

std::string tellState(UnitDevices& devices, const ControlArguments& /*arguments*/) {
    Lines report;
    tellLines(devices.lines, report);
    tellI2c(devices.i2c, report);
    tellWlan(devices.wlan, report);
    tellBluetooth(devices.bluetooth, report);
    tellMedia(devices.media, report);
    tellDisplays(devices.displays, report);
    report.push_back(formatText("audio %s %s", AudioDriver::kProcess, nameOf(devices.audio.state())));
    return listed(report, "\n");
}

} // namespace

ControlRows stateReport() {
    return {{"state", 0, 0, "", tellState}};
}

} // namespace headunit
