#pragma once

#include <chrono>

#include "devices/CommInterface.h"

/// How both serial front ends use the station's line.
namespace StationLine {

constexpr unsigned kBaud = 115200;
constexpr unsigned kDataBits = 8;
constexpr unsigned kStopBits = 1;
constexpr CommInterface::Parity kParity = CommInterface::None;

/// The longest that a front end waits for the device to appear before it looks at its own state again.
constexpr std::chrono::milliseconds kDeviceWait{1000};

} // namespace StationLine
