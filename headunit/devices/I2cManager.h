#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "devices/I2cBus.h"
#include "serial/EventLoop.h"
#include "unit/UnitTree.h"

namespace headunit {

/// The manager of the unit's I2C bus: answers the packets of its clients at a socket in the unit's tree,
/// at once, late, or, while it is away, not at all. Installed before the event loop runs; everything
/// else happens on the loop's thread or while the loop does not run. Nothing here blocks. The loop
/// outlives it.
class I2cManager : private EventSource {
public:
    static constexpr char kNode[] = "/dev/i2c0";

    explicit I2cManager(EventLoop& loop);
    ~I2cManager() override;

    /// Claims the node and makes its socket. Called once. Throws UnitError.
    void install(UnitTree& tree);

    /// What the manager answers is its bus's state.
    I2cBus& bus() { return m_bus; }

    bool isThere() const { return static_cast<bool>(m_listener); }

    /// Removes the node and drops every client, also those that wait for an answer. No effect on a
    /// manager that is away.
    void goAway();

    /// Makes the node again, with the bus as it was. Throws UnitError when the name is taken. No effect
    /// on a manager that is there.
    void comeBack();

    /// From now on answers come so much later than their requests.
    void setLate(std::chrono::milliseconds late) { m_late = late; }

private:
    class Connection;

    int descriptor() const override { return m_listener.get(); }
    short awaitedEvents() const override;
    void onEvents(short events) override;
    void sweep();

    EventLoop& m_loop;
    I2cBus m_bus;
    std::string m_path; ///< of the node on the host
    System::Descriptor m_folder;
    System::Descriptor m_listener;
    std::chrono::milliseconds m_late{0};
    std::vector<std::unique_ptr<Connection>> m_connections;
    Timer m_sweep; ///< removes the connections that have ended
};

} // namespace headunit
