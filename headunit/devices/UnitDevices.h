#pragma once

#include <string>
#include <vector>

#include "devices/AudioDriver.h"
#include "devices/BlockMedia.h"
#include "devices/BluetoothManager.h"
#include "devices/Displays.h"
#include "devices/GpioPorts.h"
#include "devices/I2cManager.h"
#include "devices/SerialLines.h"
#include "devices/TelephonePower.h"
#include "devices/WlanManager.h"

namespace headunit {

/// The devices of a unit that do something while it runs, for the loop's thread or while the loop does
/// not run. The loop and the tree outlive them.
struct UnitDevices {
    explicit UnitDevices(EventLoop& loop)
        : lines(loop), i2c(loop), wlan(loop), bluetooth(loop), telephone(loop, ports) {}

    /// Installs each in turn; the media named in `wantedMedia` are there from the beginning. Throws
    /// UnitError that names the device which failed.
    void install(UnitTree& tree, const std::vector<std::string>& wantedMedia);

    SerialLines lines;
    I2cManager i2c;
    WlanManager wlan;
    BluetoothManager bluetooth;
    GpioPorts ports;
    TelephonePower telephone;
    BlockMedia media;
    Displays displays;
    AudioDriver audio;
};

} // namespace headunit
