#pragma once

#include "serial/SerialLine.h"

namespace headunit {

// The serial lines of a unit.
constexpr SerialLine::Identity kStationLine = {"station", "/dev/usbserialadapter1"};
constexpr SerialLine::Identity kLoopbackLine = {"loopback", "/dev/ser1"};
constexpr SerialLine::Identity kModemLine = {"modem", "/dev/NAD/AT_port"};
constexpr SerialLine::Identity kReceiverLine = {"receiver", "/dev/ser3"};

} // namespace headunit
