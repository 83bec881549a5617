#pragma once

#include <array>
#include <string_view>

#include "devices/LoopbackLine.h"
#include "devices/Modem.h"
#include "devices/PositionReceiver.h"
#include "devices/StationLine.h"

namespace headunit {

/// The four serial lines of a unit, for the loop's thread or while the loop does not run. The loop and
/// the tree outlive them.
struct SerialLines {
    explicit SerialLines(EventLoop& loop) : station(loop), loopback(loop), modem(loop), receiver(loop) {}

    /// Installs each in turn. Throws UnitError that names the line which failed.
    void install(UnitTree& tree);

    std::array<SerialLine*, 4> all() { return {&station, &loopback, &modem, &receiver}; }

    /// The line with this name, null when there is none.
    SerialLine* find(std::string_view name);

    StationLine station;
    LoopbackLine loopback;
    Modem modem;
    PositionReceiver receiver;
};

} // namespace headunit
