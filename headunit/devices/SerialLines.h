#pragma once

#include <array>
#include <string>
#include <string_view>

#include "devices/LoopbackLine.h"
#include "devices/Modem.h"
#include "devices/PositionReceiver.h"
#include "devices/SerialLineIdentities.h"
#include "devices/StationLine.h"

namespace headunit {

/// The four serial lines of a unit, for the loop's thread or while the loop does not run. The loop and
/// the tree outlive them.
struct SerialLines {
    /// What the user calls them, in the order of all().
    static constexpr std::array<std::string_view, 4> kNames = {kStationLine.name, kLoopbackLine.name,
                                                               kModemLine.name, kReceiverLine.name};

    explicit SerialLines(EventLoop& loop) : station(loop), loopback(loop), modem(loop), receiver(loop) {}

    /// Installs each in turn. Throws UnitError that names the line which failed.
    void install(UnitTree& tree);

    std::array<SerialLine*, 4> all() { return {&station, &loopback, &modem, &receiver}; }

    /// Throws UnitError when there is none with this name.
    SerialLine& named(const std::string& name);

    StationLine station;
    LoopbackLine loopback;
    Modem modem;
    PositionReceiver receiver;
};

} // namespace headunit
