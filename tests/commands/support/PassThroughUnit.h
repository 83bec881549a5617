#pragma once

#include <string>
#include <vector>

#include "commands/SWriteCmd.h"
#include "devices/CommHandler.h"
#include "support/DeviceCalls.h"
#include "support/Line.h"
#include "support/UnitFixture.h"

constexpr unsigned char kWlan = 240;
constexpr unsigned char kBluetooth = 241;

constexpr unsigned kReadSize = 0x10;
constexpr unsigned kIoFailed = 0x0A000000;
constexpr unsigned kNoSuchChannel = 0x0A000004;
constexpr unsigned kNoSuchParity = 0x0A000008;
constexpr unsigned kOpenFailed = 0x0A000040;

Bytes openRequest(unsigned char channel, std::uint32_t baud = 115200, unsigned char flags = 0);
Bytes sendRequest(unsigned char channel, const Bytes& data);

/// A front end whose station is on the serial channel that a case says.
class StationsFrontEnd : public FrontEnd {
public:
    int getDeviceListNumber() override { return channel; }

    int channel = 0;
};

/// The pass-through command in a unit with a line of the test's behind each of its channels. A case
/// finds all channels closed, and the station on channel 0.
class PassThroughUnit : public CommandTest<SWriteCmd, UnitFixture, StationsFrontEnd> {
protected:
    static constexpr unsigned kChannels = 4;

    PassThroughUnit();
    ~PassThroughUnit() override;

    static Comm::Handle& channel(unsigned number);

    DeviceCalls& m_calls; // outlives the case, as the dispatcher's thread passes by it
    Line m_lines[kChannels];
};
