#pragma once

#include <string>
#include <thread>
#include <vector>

#include "control/ControlCommands.h"
#include "control/ControlServer.h"
#include "devices/UnitDevices.h"
#include "serial/EventLoop.h"
#include "unit/UnitTree.h"

namespace headunit {

/// What plays the unit's surroundings while it runs: the devices that do something, and the user's
/// control, on a thread of their own. Made on the main thread before the unit starts, after StopSignals,
/// and destroyed after the unit has ended; the nodes go with it. The tree outlives it.
class UnitPeers {
public:
    /// The block media in `wantedMedia` are there from the beginning. Throws UnitError when a node
    /// cannot be put into the tree.
    explicit UnitPeers(UnitTree& tree, const std::vector<std::string>& wantedMedia = {});
    UnitPeers(const UnitPeers&) = delete;
    UnitPeers& operator=(const UnitPeers&) = delete;
    ~UnitPeers();

    /// The terminal that the test station opens.
    const std::string& stationPath() const { return m_devices.lines.station.stationPath(); }

private:
    EventLoop m_loop;
    UnitDevices m_devices{m_loop};
    ControlCommands m_commands{m_devices};
    ControlServer m_control; ///< before the devices are installed: it makes sure that the tree is ours
    std::thread m_thread;
};

} // namespace headunit
