#pragma once

#include <string>
#include <thread>

#include "control/ControlCommands.h"
#include "control/ControlServer.h"
#include "devices/SerialLines.h"
#include "serial/EventLoop.h"
#include "unit/UnitTree.h"

namespace headunit {

/// What plays the unit's surroundings while it runs: the peers of its serial lines and the user's
/// control, on a thread of their own. Made on the main thread before the unit starts, after StopSignals,
/// and destroyed after the unit has ended; the nodes go with it. The tree outlives it.
class UnitPeers {
public:
    /// Throws UnitError when a node cannot be put into the tree.
    explicit UnitPeers(UnitTree& tree);
    UnitPeers(const UnitPeers&) = delete;
    UnitPeers& operator=(const UnitPeers&) = delete;
    ~UnitPeers();

    /// The terminal that the test station opens.
    const std::string& stationPath() const { return m_lines.station.stationPath(); }

private:
    EventLoop m_loop;
    SerialLines m_lines{m_loop};
    ControlCommands m_commands{m_lines};
    ControlServer m_control; ///< before the lines are installed: it makes sure that the tree is ours
    std::thread m_thread;
};

} // namespace headunit
