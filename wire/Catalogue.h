#pragma once

#include <array>
#include <string_view>

namespace wire {

/// A command of the unit: one row says once what it is called. The daemon's commands, the station's
/// forms and help and the documents either take it from here or are compared with it by a test.
struct Command {
    std::string_view name; ///< on a line
    /// In a frame, one character each; the second one writes what the first one reads.
    std::string_view ids;
    std::string_view summary; ///< what it does
};

/// In the order of the names.
inline constexpr std::array kCatalogue = {
    Command{"ack", "\x06", "absorbs an acknowledgement; answers nothing"},
    Command{"audio", "E", "switches the audio driver's test state"},
    Command{"blockdev", "m", "moves blocks between block devices and the scratch buffer"},
    Command{"diag", "D", "checksums the scratch buffer"},
    Command{"exec", "c", "runs a shell command line with a time limit and answers its output"},
    Command{"graphic", "G", "shows test pictures on the displays and routes video inputs to them"},
    Command{"i2c", "iI", "reads and writes slaves of the I2C bus, sets the bus up"},
    Command{"memory", "t", "reads and writes the 128 MiB scratch buffer"},
    Command{"port", "pP", "reads and writes general-purpose lines"},
    Command{"serial", "S", "passes bytes to and from serial lines, Bluetooth and WLAN"},
    Command{"status", "s",
            "build, product, board revision, protocol version; serial number and version files"},
};

} // namespace wire
