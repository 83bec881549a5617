#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "devices/I2cBus.h"
#include "devices/ManagerNode.h"

namespace headunit {

/// The manager of the unit's I2C bus: what its node's clients ask is answered by the bus. Installed
/// before the event loop runs; everything else happens on the loop's thread or while the loop does not
/// run. Nothing here blocks. The loop outlives it.
class I2cManager : private ManagerRequests {
public:
    static constexpr char kNode[] = "/dev/i2c0";

    explicit I2cManager(EventLoop& loop) : m_node(loop, *this) {}

    /// Claims the node and makes its socket. Called once. Throws UnitError.
    void install(UnitTree& tree) { m_node.install(tree, kNode); }

    /// What the manager answers is its bus's state; the bus stays as it is while the node is away.
    I2cBus& bus() { return m_bus; }

    ManagerNode& node() { return m_node; }

private:
    std::optional<std::string> requested(Client client, std::string_view packet) override {
        return m_bus.answer(client, packet);
    }
    void left(Client client) override { m_bus.left(client); }

    I2cBus m_bus;
    ManagerNode m_node; ///< goes before the bus
};

} // namespace headunit
